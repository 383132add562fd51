#pragma once

#include "core/tree/Snapshot.h"

#include <optional>
#include <string>

namespace spacemint {

/// The folder of a scan that is shown.
struct ShownFolder {
  /// As the tree has it.
  std::string path;
  const Node* node = nullptr;
  /// Absent for the root of the scan.
  std::optional<std::string> parent;

  /// The folder that is asked for; the root without one. What is gone, or no folder, gives way to the nearest
  /// folder above it that is there. Lives as long as the scan.
  static ShownFolder in(const Snapshot& snapshot, const std::optional<std::string>& wanted);
};

}  // namespace spacemint
