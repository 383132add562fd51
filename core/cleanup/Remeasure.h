#pragma once

#include "core/tree/Snapshot.h"

#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// The current state of an item.
struct Measured {
  std::string path;
  bool exists = false;
  /// Absent if the item does not exist or cannot be measured.
  std::optional<Node> tree = {};
};

/// Measures the item at `path` with the smallest stored size and the excludes of a scan (`Coverage`). Blocks;
/// any thread.
Measured measureAgain(std::string path, Bytes minNodeSize, const std::vector<std::string>& excludes);

/// The path to measure in order to add `path` to the scan: the highest ancestor that the scan does not
/// contain (because it was too small), or `path` itself.
std::string highestMissing(const Snapshot& snapshot, std::string path);

/// Updates the scan with a measurement; true if the scan changed. An item that exists but could not be
/// measured keeps its size, or becomes an empty folder if `assumeEmptied`.
bool putInto(Snapshot& snapshot, Measured measured, bool assumeEmptied = false);

}  // namespace spacemint
