#pragma once

#include "core/base/Date.h"
#include "core/tree/Node.h"

#include <optional>
#include <string>
#include <vector>

namespace spacemint::ctl {

/// A line of a list of files and folders.
struct Row {
  enum class Kind : std::uint8_t {
    item,
    /// Everything in the folder that is too small to have a line; without a path.
    smaller,
    /// Was there at the scan that is compared with, and is not there any more.
    gone,
  };

  Kind kind = Kind::item;
  std::string path;
  /// The name of the item; in lists of several folders, its path for display.
  std::string name;
  Bytes size = 0;
  std::int64_t fileCount = 0;
  std::optional<Date> modified;
  bool isDirectory = false;
  /// Since the scan that is compared with; absent where it is not known.
  std::optional<Bytes> growth;
  bool isNew = false;
  /// What the item is and what its removal means, in one sentence; only in the list of what is safe to clean.
  std::string note = {};

  bool isItem() const { return kind == Kind::item; }
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
};

std::vector<Row> rowsOf(const RowSource& source);

/// Stable; equal rows are in the order of their names.
void sortRows(std::vector<Row>& rows, const RowOrder& order);

}  // namespace spacemint::ctl
