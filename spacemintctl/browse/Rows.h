#pragma once

#include "core/base/Date.h"
#include "core/tree/Coverage.h"
#include "core/tree/Node.h"
#include "spacemintctl/browse/FolderLook.h"

#include <optional>
#include <string>
#include <vector>

namespace spacemint::ctl {

/// What is special about an item. If several hold, the first one here.
enum class Flag : std::uint8_t {
  none,
  /// Could not be read.
  unread,
  /// Something in the folder could not be read.
  unreadBelow,
  /// The user excludes it from scans.
  excluded,
  /// On another volume, or a snapshot.
  elsewhere,
  /// A file with several names, each of which counts its share.
  linked,
  /// Neither a file nor a folder.
  special,
  emptyFolder,
};

/// A line of a list of files and folders.
struct Row {
  enum class Kind : std::uint8_t {
    item,
    /// Everything in the folder that is too small to have a line; without a path.
    smaller,
    /// Not counted in the folder, and not listed by itself: excluded, or on another volume.
    leftOut,
    /// Was there at the scan that is compared with, and is not there any more.
    gone,
  };

  Kind kind = Kind::item;
  std::string path;
  /// The name of the item; in lists of several folders, its path for display.
  std::string name;
  /// Of what is left out, the last known size, or 0.
  Bytes size = 0;
  std::int64_t fileCount = 0;
  /// When a file last changed. Of a folder the newest that is known of it and of what is below it: it may
  /// hold something newer that is too small for a scan.
  std::optional<Date> modified;
  bool isDirectory = false;
  /// Since the scan that is compared with; absent where it is not known.
  std::optional<Bytes> growth;
  bool isNew = false;
  Flag flag = Flag::none;
  /// Absent while the disk has not been looked at.
  std::optional<ItemLook> look = {};
  /// What the item is and what its removal means, in one sentence; only in the list of what is safe to clean.
  std::string note = {};

  bool isItem() const { return kind == Kind::item; }
  /// Whether the scan has no size of it.
  bool isUnmeasured() const {
    return kind == Kind::leftOut || (flag == Flag::unread && size == 0 && fileCount == 0);
  }
};

enum class RowKey : std::uint8_t { size, name, count, age, growth };

/// How rows are ordered. Names from a to z, the oldest first, everything else the largest first; `isReversed`
/// turns this around. What is too small to have a line stays last.
struct RowOrder {
  RowKey key = RowKey::size;
  bool isReversed = false;
  bool foldersFirst = false;

  bool operator==(const RowOrder&) const = default;
};

/// What rows are made of.
struct RowSource {
  /// The folder; its children need not have children.
  const Node& folder;
  std::string path;
  /// The same folder in the scan that is compared with; null if it had no node there.
  const Node* before = nullptr;
  /// The smallest size of a node in that scan; absent if nothing is compared.
  std::optional<Bytes> beforeMinimum;
  /// True if the folder's children are all that is in it, but for `unlistedSize`.
  bool isComplete = false;
  /// The same folder in the scan, whose children may have children; null if it has no node there.
  const Node* scanned = nullptr;
  /// What the scan left out; null if that is not known yet.
  const Coverage* coverage = nullptr;
  const FolderLook& look;
};

std::vector<Row> rowsOf(const RowSource& source);

/// Stable; equal rows are in the order of their names.
void sortRows(std::vector<Row>& rows, const RowOrder& order);

}  // namespace spacemint::ctl
