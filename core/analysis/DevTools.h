#pragma once

#include "core/places/CleanupTarget.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// What developers' tools keep on the disk.
namespace DevTools {

/// A known cache that the scan has found.
struct FoundCleanup {
  const CleanupTarget* target = nullptr;
  /// Full path in the scan tree.
  std::string path;
  /// What the folder takes. A tool's command may free less.
  Bytes size = 0;

  std::string_view id() const { return target->id; }
  bool operator==(const FoundCleanup&) const = default;
};

/// All known caches.
constexpr std::span<const CleanupTarget> cleanups() {
  return cleanupTargets;
}

struct CleanupsArguments {
  const Snapshot& in;
  std::string_view home;
  Bytes minimum = 0;
  Environment environment = {};
};

/// The caches of at least `minimum` bytes, largest first. Where a target has several folders it is the
/// largest of them.
std::vector<FoundCleanup> cleanups(const CleanupsArguments& arguments);

}  // namespace DevTools

}  // namespace spacemint
