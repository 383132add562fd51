#pragma once

#include "core/tree/Snapshot.h"

#include <string>
#include <vector>

namespace spacemint {

/// A folder or file that grew between two scans. Sizes are in bytes.
struct Growth {
  std::string path;
  /// New size minus old size. The old size is 0 if the earlier scan has no entry.
  Bytes delta = 0;
  Bytes size = 0;
  bool isDirectory = false;
  /// The earlier scan has no entry for the path.
  bool isNew = false;

  const std::string& id() const { return path; }
  bool operator==(const Growth&) const = default;
};

/// Compares two scans of the same folder. Pure; any thread.
namespace Changes {

struct GrowthArguments {
  const Snapshot& from;
  const Snapshot& to;
  Bytes minimum = 0;
  std::size_t limit = 0;
};

/// The folders and files that grew by at least `minimum` bytes, largest growth first, at most `limit`. If one
/// child accounts for 60 % or more of a folder's growth, the children are listed in place of the folder; so a
/// result never contains another result. Empty if the scans have different roots, or if the root grew by less
/// than `minimum`.
std::vector<Growth> growth(const GrowthArguments& arguments);

}  // namespace Changes

}  // namespace spacemint
