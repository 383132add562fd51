#include "spacemintctl/browse/BrowseView.h"

#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "core/wording/FindingText.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/browse/Cells.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <utility>

namespace spacemint::ctl {

namespace {

constexpr std::size_t linesAround = 4;  // title, heads of the columns; status, keys

// A bar of `width` cells in steps of an eighth of a cell.
std::string barOf(Bytes size, Bytes largest, std::size_t width) {
  constexpr std::array<std::string_view, 9> eighths{" ", "▏", "▎", "▍", "▌", "▋", "▊", "▉", "█"};
  const double share = largest < 1 ? 0 : static_cast<double>(size) / static_cast<double>(largest);
  auto left =
      static_cast<std::size_t>(std::lround(std::clamp(share, 0.0, 1.0) * static_cast<double>(width) * 8));
  std::string bar;
  for (std::size_t cell = 0; cell < width; ++cell) {
    const std::size_t here = std::min<std::size_t>(left, 8);
    bar += eighths[here];
    left -= here;
  }
  return bar;
}

// A column of the list. Its text for a row, and its width without the space behind it.
struct Column {
  const char* head;
  RowKey key = RowKey::size;
  std::size_t width = 0;
  Side side = Side::right;
  Span (*cell)(const Row& row, const BrowseView& view, Bytes largest) = nullptr;
  // How long the column stays while the screen gets narrower; the least goes first.
  int importance = 0;
};

constexpr std::size_t barWidth = 10;
// The mark and the flag of a row.
constexpr std::size_t signsWidth = 2;

Span sizeCell(const Row& row, const BrowseView& view, Bytes) {
  if (row.kind == Row::Kind::gone) return {i18n("gone"), Style::dim};
  if (row.isUnmeasured()) return {row.size > 0 ? ByteFormat::string(row.size, view.locale) : "", Style::dim};
  if (view.isUnfinished && row.isDirectory && row.fileCount == 0) return {"…", Style::dim};
  return {ByteFormat::string(row.size, view.locale), Style::strong};
}
Span barCell(const Row& row, const BrowseView&, Bytes largest) {
  return {barOf(row.isUnmeasured() ? 0 : row.size, largest, barWidth), Style::bar};
}
Span percentageCell(const Row& row, const BrowseView& view, Bytes) {
  return {row.kind == Row::Kind::gone || row.isUnmeasured() ? "" : percentage(row.size, view.whole)};
}
Span growthCell(const Row& row, const BrowseView& view, Bytes) {
  if (row.growth.value_or(0) == 0) return {""};
  return {signedSize(*row.growth, view.locale), *row.growth > 0 ? Style::grew : Style::shrank};
}
Span countCell(const Row& row, const BrowseView& view, Bytes) {
  return {row.isItem() && row.isDirectory && !row.isUnmeasured() ? groupedNumber(row.fileCount, view.locale)
                                                                 : ""};
}
Span ageCell(const Row& row, const BrowseView& view, Bytes) {
  const std::string age = row.modified ? shortAge(*row.modified, view.now) : "";
  if (!row.isDirectory) return {age};
  // Nothing is newer than "now".
  return {age.empty() || age == i18n("now") ? age : "≤" + age, Style::dim};
}

constexpr std::array<Column, 6> allColumns{{
    {i18nMark("SIZE"), RowKey::size, 8, Side::right, sizeCell, 6},
    {"", RowKey::size, barWidth, Side::left, barCell, 3},
    {i18nMark("SHARE"), RowKey::size, 6, Side::right, percentageCell, 4},
    {i18nMark("GROWTH"), RowKey::growth, 9, Side::right, growthCell, 5},
    {i18nMark("FILES"), RowKey::count, 9, Side::right, countCell, 2},
    {i18nMark("AGE"), RowKey::age, 7, Side::right, ageCell, 1},
}};

bool isWanted(const Column& column, const BrowseView& view) {
  if (column.cell == growthCell) return view.showsGrowth;
  if (column.cell == ageCell)
    return std::ranges::any_of(view.rows, [](const Row& row) { return row.modified.has_value(); });
  if (column.cell == barCell) return view.share == ShareColumn::both || view.share == ShareColumn::bar;
  if (column.cell == percentageCell)
    return view.share == ShareColumn::both || view.share == ShareColumn::percentage;
  return true;
}

// The columns that fit beside a name of a reasonable width. The column of the order always stays.
std::vector<Column> columnsFor(const BrowseView& view, std::size_t width) {
  constexpr std::size_t nameWidth = 23;
  std::vector<Column> columns;
  std::ranges::copy_if(allColumns, std::back_inserter(columns),
                       [&](const Column& column) { return isWanted(column, view); });
  // The units of some languages are longer than "GB".
  constexpr std::size_t english = std::string_view{"99.9 GB"}.size();
  const std::size_t longest = columnsOf(ByteFormat::string(99'900'000'000, view.locale));
  for (Column& column : columns) {
    const bool isSize = column.cell == sizeCell || column.cell == growthCell;
    if (isSize && longest > english) column.width += longest - english;
  }
  const auto used = [&] {
    std::size_t sum = signsWidth + nameWidth;
    for (const Column& column : columns) sum += column.width + 1;
    return sum;
  };
  const auto importance = [&](const Column& column) {
    return column.key == view.order.key && *column.head != '\0' ? 100 : column.importance;
  };
  while (columns.size() > 1 && used() > width)
    columns.erase(std::ranges::min_element(columns, {}, importance));
  return columns;
}

// The column of shares has the order of the sizes, but not its mark.
std::string headOf(const char* head, RowKey key, const BrowseView& view) {
  if (*head == '\0') return "";
  const bool orders = key == view.order.key && head != std::string_view{"SHARE"};
  return i18n(head) + (orders ? (view.order.isReversed ? "▴" : "▾") : "");
}

Style nameStyle(const Row& row) {
  if (!row.isItem()) return Style::dim;
  return row.isDirectory ? Style::folder : Style::plain;
}

std::string nameOf(const Row& row) {
  if (row.kind == Row::Kind::smaller) return i18n("(smaller files and folders)");
  return shownText(row.name) + (row.isDirectory ? "/" : "");
}

Line lineOf(const Row& row, const BrowseView& view, const std::vector<Column>& columns, Bytes largest,
            std::size_t width) {
  const bool isMarked = row.isItem() && view.marked.contains(row.path);
  Line line{
      .spans = {{isMarked ? "*" : " ", Style::marked}, {std::string{signOf(row.flag)}, Style::warning}}};
  std::size_t used = signsWidth;
  for (const Column& column : columns) {
    const Span cell = column.cell(row, view, largest);
    line.spans.push_back({fitted(cell.text, column.width, column.side), cell.style});
    line.spans.push_back({" "});
    used += column.width + 1;
  }
  const std::size_t left = width > used ? width - used : 0;
  line.spans.push_back({fitted(nameOf(row), left), isMarked ? Style::marked : nameStyle(row)});
  return line;
}

// As many of the keys, which two spaces divide, as there is room for.
std::string keysThatFit(std::string keys, std::size_t width) {
  while (columnsOf(keys) > width) {
    const std::size_t end = keys.rfind("  ");
    if (end == std::string::npos) break;
    keys.resize(end);
  }
  return keys;
}

Line textLine(const std::string& text, std::size_t width, Style style) {
  return {.spans = {{fitted(text, width), style}}};
}

// The title on the left, cut at its start, and the figure on the right.
Line titleLine(const BrowseView& view, std::size_t width) {
  const std::string figure = " " + view.figure + " ";
  const std::size_t taken = std::min(columnsOf(figure), width);
  const std::size_t room = width - taken;
  const std::string title = " " + endOf(shownText(view.title), room > 2 ? room - 2 : 0);
  return {.spans = {{fitted(title, room), Style::heading}, {fitted(figure, taken), Style::heading}}};
}

Line headLine(const BrowseView& view, const std::vector<Column>& columns, std::size_t width) {
  std::string text(signsWidth, ' ');
  for (const Column& column : columns)
    text += fitted(headOf(column.head, column.key, view), column.width, column.side) + " ";
  return textLine(text + headOf(i18nMark("NAME"), RowKey::name, view), width, Style::dim);
}

std::vector<Line> paragraphLines(const std::vector<Paragraph>& paragraphs, std::size_t width) {
  std::size_t labels = 0;
  for (const Paragraph& each : paragraphs) labels = std::max(labels, columnsOf(shownText(each.label)));
  const std::size_t indent = labels == 0 ? 0 : std::min(labels + 2, width / 2);
  std::vector<Line> lines;
  for (const Paragraph& each : paragraphs) {
    std::string label = shownText(each.label);
    // A paragraph without a label stands on its own.
    const std::size_t start = label.empty() ? 0 : indent;
    auto parts = wrapped(shownText(each.text), width - start);
    if (parts.empty()) parts.emplace_back();
    for (const std::string& part : parts) {
      lines.push_back({.spans = {{fitted(std::exchange(label, ""), start), Style::plain},
                                 {fitted(part, width - start), each.style}}});
    }
  }
  return lines;
}

struct PopupLines {
  std::vector<Line> lines;
  // The lines at whose right side a mark says that there is more of the text.
  std::optional<std::size_t> moreAbove = {};
  std::optional<std::size_t> moreBelow = {};
};

PopupLines popupLines(const Popup& popup, std::size_t width, std::size_t room) {
  std::vector<Line> text = paragraphLines(popup.text, width);
  std::vector<Line> below;
  for (std::size_t i = 0; i < popup.choices.size(); ++i) {
    below.push_back(textLine(" " + shownText(popup.choices[i]), width, Style::plain));
    below.back().isChosen = i == popup.chosen;
  }
  if (popup.input)
    below.push_back(textLine("> " + endOf(shownText(*popup.input), width - 3) + "▏", width, Style::strong));
  if (!below.empty() && !text.empty()) below.insert(below.begin(), textLine("", width, Style::plain));
  // A long list of choices keeps the chosen one in sight, a long text what is scrolled to.
  const std::size_t forBelow = std::min(below.size(), room);
  const std::size_t chosenLine =
      popup.choices.empty() ? 0 : popup.chosen + (below.size() - popup.choices.size());
  const std::size_t skipped = chosenLine >= forBelow ? chosenLine - forBelow + 1 : 0;
  const std::size_t forText = std::min(text.size(), room - forBelow);
  const std::size_t firstLine = std::min(popup.firstLine, text.size() - forText);
  PopupLines all{.lines{text.begin() + static_cast<std::ptrdiff_t>(firstLine),
                        text.begin() + static_cast<std::ptrdiff_t>(firstLine + forText)}};
  if (forText > 0 && firstLine > 0) all.moreAbove = 0;
  if (forText > 0 && firstLine + forText < text.size()) all.moreBelow = forText - 1;
  all.lines.insert(all.lines.end(), below.begin() + static_cast<std::ptrdiff_t>(skipped),
                   below.begin() + static_cast<std::ptrdiff_t>(skipped + forBelow));
  return all;
}

std::string repeated(std::string_view text, std::size_t times) {
  std::string all;
  while (times-- > 0) all += text;
  return all;
}

// A rule with a text in it: "┌─ Help ────┐".
std::string rule(std::string_view start, std::string_view end, const std::string& text, std::size_t width) {
  const std::string shown =
      text.empty() ? "" : fitted(" " + text + " ", std::min(columnsOf(text) + 2, width - 3));
  return std::string{start} + "─" + shown + repeated("─", width - 3 - columnsOf(shown)) + std::string{end};
}

void place(const Popup& popup, Screen& screen, const ScreenSize& size) {
  const std::size_t width = std::min<std::size_t>(size.columns, 74);
  if (width < 12 || size.rows < 5) return;
  const PopupLines all = popupLines(popup, width - 4, size.rows - 4);
  const std::vector<Line>& inside = all.lines;
  const std::size_t top = (size.rows - inside.size() - 2) / 2;
  const std::size_t left = (size.columns - width) / 2;
  const auto put = [&](std::size_t row, std::vector<Span> spans) {
    Line& line = screen.lines[row];
    line.isChosen = false;
    spans.insert(spans.begin(), {std::string(left, ' '), Style::plain});
    spans.push_back({std::string(size.columns - left - width, ' '), Style::plain});
    line.spans = std::move(spans);
  };
  put(top, {{rule("┌", "┐", shownText(popup.title), width), Style::strong}});
  for (std::size_t i = 0; i < inside.size(); ++i) {
    std::vector<Span> spans{{"│", Style::strong}, {inside[i].isChosen ? "▸" : " ", Style::strong}};
    for (const Span& span : inside[i].spans)
      spans.push_back({span.text, inside[i].isChosen ? Style::marked : span.style});
    spans.push_back({" ", Style::plain});
    spans.push_back({i == all.moreBelow ? "▾" : i == all.moreAbove ? "▴" : "│", Style::strong});
    put(top + 1 + i, std::move(spans));
  }
  put(top + 1 + inside.size(), {{rule("└", "┘", shownText(popup.keys), width), Style::strong}});
}

// A message that is too long for its line begins on the line of the status: its end has the reason.
void addFooter(const BrowseView& view, std::size_t width, std::vector<Line>& lines) {
  const std::string footer = shownText(view.footer);
  const bool isLong = view.footerStyle != Style::dim && columnsOf(footer) + 1 > width;
  if (const auto parts = wrapped(footer, width - 1); isLong && parts.size() > 1) {
    const std::string rest = parts.size() > 2 ? endOf(footer, width - 1) : parts[1];
    lines.push_back(textLine(" " + parts[0], width, view.footerStyle));
    lines.push_back(textLine(" " + rest, width, view.footerStyle));
    return;
  }
  lines.push_back(textLine(" " + shownText(view.status), width, Style::plain));
  lines.push_back(textLine(" " + keysThatFit(footer, width - 1), width, view.footerStyle));
}

}  // namespace

char signOf(Flag flag) {
  constexpr std::string_view signs = " !.<>H@e";
  return signs.at(std::to_underlying(flag));
}

std::optional<RowKey> headAt(const BrowseView& view, const ScreenSize& size, std::size_t line,
                             std::size_t column) {
  if (line != 1) return std::nullopt;
  std::size_t end = signsWidth;
  for (const Column& each : columnsFor(view, size.columns)) {
    end += each.width + 1;
    if (column < end) return each.key;
  }
  return RowKey::name;
}

std::size_t visibleRows(const ScreenSize& size) {
  return size.rows > linesAround ? size.rows - linesAround : 1;
}

std::optional<std::size_t> rowAt(const BrowseView& view, const ScreenSize& size, std::size_t line) {
  if (line < 2 || line - 2 >= visibleRows(size)) return std::nullopt;
  const std::size_t row = view.first + line - 2;
  return row < view.rows.size() ? std::optional{row} : std::nullopt;
}

void scrollToCursor(BrowseView& view, const ScreenSize& size) {
  const std::size_t shown = visibleRows(size);
  view.cursor = view.rows.empty() ? 0 : std::min(view.cursor, view.rows.size() - 1);
  const std::size_t lastFirst = view.rows.size() > shown ? view.rows.size() - shown : 0;
  view.first = std::min(view.first, lastFirst);
  if (view.cursor < view.first) view.first = view.cursor;
  if (view.cursor >= view.first + shown) view.first = view.cursor - shown + 1;
}

Screen drawn(const BrowseView& view, const ScreenSize& size) {
  const std::size_t width = size.columns;
  const std::vector<Column> columns = columnsFor(view, width);
  Bytes largest = 1;
  for (const Row& row : view.rows) {
    if (!row.isUnmeasured()) largest = std::max(largest, row.size);
  }
  Screen screen;
  auto& lines = screen.lines;
  lines.push_back(titleLine(view, width));
  lines.push_back(headLine(view, columns, width));
  for (std::size_t i = 0; i < visibleRows(size); ++i) {
    const std::size_t index = view.first + i;
    if (index < view.rows.size()) {
      lines.push_back(lineOf(view.rows[index], view, columns, largest, width));
      lines.back().isChosen = index == view.cursor;
    } else {
      const bool saysWhy = view.rows.empty() && i == 1;
      lines.push_back(textLine(saysWhy ? "  " + shownText(view.emptyText) : "", width, Style::dim));
    }
  }
  addFooter(view, width, lines);
  lines.resize(size.rows, textLine("", width, Style::plain));
  if (view.popup) place(*view.popup, screen, size);
  return screen;
}

std::string signedSize(Bytes bytes, const std::string& locale) {
  return bytes < 0 ? FindingText::lost(-bytes, locale) : "+" + ByteFormat::string(bytes, locale);
}

std::string shortAge(Date date, Date now) {
  struct Unit {
    std::int64_t seconds;
    const char* text;
  };
  constexpr std::array<Unit, 6> units{{{31'536'000, i18nMark("{number} y")},
                                       {2'592'000, i18nMark("{number} mo")},
                                       {604'800, i18nMark("{number} w")},
                                       {86'400, i18nMark("{number} d")},
                                       {3'600, i18nMark("{number} h")},
                                       {60, i18nMark("{number} min")}}};
  const auto seconds = std::chrono::floor<std::chrono::seconds>(timeBetween(date, now)).count();
  if (seconds < 0) return "";
  for (const Unit& unit : units) {
    if (seconds >= unit.seconds) return i18n(unit.text, {{"number", numberText(seconds / unit.seconds)}});
  }
  return i18n("now");
}

}  // namespace spacemint::ctl
