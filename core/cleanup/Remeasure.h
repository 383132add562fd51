#pragma once

#include "core/tree/Snapshot.h"

#include <optional>
#include <string>

namespace spacemint {

/// What stands at a path now.
struct Measured {
  std::string path;
  bool exists = false;
  /// Absent where nothing is there, or it cannot be measured.
  std::optional<Node> tree = {};
};

/// Measures the item at `path`, keeping what has `minNodeSize` bytes or more. Blocks; any thread.
Measured measureAgain(std::string path, Bytes minNodeSize);

/// The path to measure so that `path` gets into the scan: the highest folder on the way that the scan does
/// not have because it was too small, else `path` itself.
std::string highestMissing(const Snapshot& snapshot, std::string path);

/// Puts what was measured into the scan; true when that changed it. An item that is there but could not be
/// measured keeps its size, unless `assumeEmptied`.
bool putInto(Snapshot& snapshot, Measured measured, bool assumeEmptied = false);

}  // namespace spacemint
