#pragma once

#include "core/places/CleanupTarget.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// The caches of development tools.
namespace DevTools {

/// A cache of the table `cleanupTargets` that is in the scan.
struct FoundCleanup {
  const CleanupTarget* target = nullptr;
  /// Full path in the scan tree.
  std::string path;
  /// The folder's size. The tool's own clean-up command may free less.
  Bytes size = 0;

  std::string_view id() const { return target->id; }
  bool operator==(const FoundCleanup&) const = default;
};

/// All caches that the product knows, found or not.
constexpr std::span<const CleanupTarget> cleanups() {
  return cleanupTargets;
}

struct CleanupsArguments {
  const Snapshot& in;
  std::string_view home;
  Bytes minimum = 0;
  Environment environment = {};
};

/// The caches of at least `minimum` bytes in a scan, largest first. If a target has several folders, the
/// result is the largest of them. Pure; any thread.
std::vector<FoundCleanup> cleanups(const CleanupsArguments& arguments);

}  // namespace DevTools

}  // namespace spacemint
