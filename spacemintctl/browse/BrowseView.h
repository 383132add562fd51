#pragma once

#include "core/base/Date.h"
#include "spacemintctl/browse/Rows.h"
#include "spacemintctl/browse/Screen.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace spacemint::ctl {

/// What the column beside the size shows.
enum class ShareColumn : std::uint8_t { both, bar, percentage, none };

/// A paragraph of a box: a text, which is wrapped beside its label.
struct Paragraph {
  std::string text = {};
  Style style = Style::plain;
  std::string label = {};
};

/// A box in front of the list.
struct Popup {
  std::string title;
  /// All labels have the width of the widest.
  std::vector<Paragraph> text = {};
  /// Answers to choose from.
  std::vector<std::string> choices = {};
  std::size_t chosen = 0;
  /// What was typed so far, if something is asked for.
  std::optional<std::string> input = {};
  /// The keys that work here.
  std::string keys = {};
  /// The first line of the text that is shown; drawing keeps it in range.
  std::size_t firstLine = 0;
};

/// Everything that `spacemintctl browse` shows.
struct BrowseView {
  std::string home;
  /// An ICU locale.
  std::string locale;
  Date now;

  /// The top line: what the list is of, and a figure on the right.
  std::string title;
  std::string figure;
  std::vector<Row> rows;
  /// Said in place of the rows if there are none.
  std::string emptyText;
  /// The size of all rows, in bytes; shares are of it.
  Bytes whole = 0;
  std::size_t cursor = 0;
  /// The first row on the screen.
  std::size_t first = 0;
  RowOrder order;
  ShareColumn share = ShareColumn::both;
  bool showsGrowth = false;
  /// A folder without files may just not be measured yet.
  bool isUnfinished = false;
  std::set<std::string> marked;
  /// Two lines below the list: what is known of the scan or the item, and what happened last or the keys.
  std::string status;
  std::string footer;
  Style footerStyle = Style::dim;
  std::optional<Popup> popup;

  const Row* current() const { return cursor < rows.size() ? &rows[cursor] : nullptr; }
};

/// The smallest screen that has room for everything; a smaller one shows what fits.
inline constexpr ScreenSize smallestScreen{.columns = 60, .rows = 16};

/// How many rows a screen shows, at least 1.
std::size_t visibleRows(const ScreenSize& size);

/// The order that the head of a column at this place of the screen stands for; absent where there is none.
std::optional<RowKey> headAt(const BrowseView& view, const ScreenSize& size, std::size_t line,
                             std::size_t column);

/// The row at a line of the screen; absent outside of the list.
std::optional<std::size_t> rowAt(const BrowseView& view, const ScreenSize& size, std::size_t line);

/// Sets `first` so that the cursor is on the screen.
void scrollToCursor(BrowseView& view, const ScreenSize& size);

/// What a terminal of this size shows. Pure; needs the process's character set (see Cells.h).
Screen drawn(const BrowseView& view, const ScreenSize& size);

/// The character that stands for a flag in a list; ' ' for none.
char signOf(Flag flag);

/// "+1.2 GB" or "−90 MB".
std::string signedSize(Bytes bytes, const std::string& locale);

/// "5 min", "3 h", "12 d", "5 w", "8 mo", "2 y"; "now" below a minute, "" for a date in the future.
std::string shortAge(Date date, Date now);

}  // namespace spacemint::ctl
