#pragma once

#include "core/tree/Snapshot.h"

#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// A folder or file that differs between two scans, with what differs in it. Sizes are in bytes.
struct ChangeTree {
  /// Smaller differences are left out, unless something in the folder differs by more.
  static constexpr Bytes minimum = 1'000'000;

  /// As the newer scan spells it; the older scan's name for what is gone. For the root the scanned folder.
  std::string name;
  /// The new size; 0 for what the newer scan has no entry for.
  Bytes size = 0;
  /// The growth, without what only one of the scans could see; negative if it shrank.
  Bytes delta = 0;
  bool isDirectory = false;
  /// The earlier scan has no entry for it.
  bool isNew = false;
  /// The newer scan has no entry for it.
  bool isGone = false;
  /// By the bytes of their names.
  std::vector<ChangeTree> children = {};

  /// The child of exactly this name; null if it did not change.
  const ChangeTree* child(std::string_view childName) const;

  bool operator==(const ChangeTree&) const = default;
};

/// Compares two scans of the same folder. Scans of different folders give a root without a change. Pure; any
/// thread.
ChangeTree changeTree(const Snapshot& from, const Snapshot& to);

}  // namespace spacemint
