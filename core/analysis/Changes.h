#pragma once

#include "core/tree/Snapshot.h"

#include <functional>
#include <optional>
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
  /// For a folder whose growth is spread: what grew in it, by at least 5 % of the folder's growth each,
  /// largest growth first, at most `Changes::insideLimit`. These have no `inside` of their own.
  std::vector<Growth> inside = {};

  const std::string& id() const { return path; }
  bool operator==(const Growth&) const = default;
};

/// How the free space of a volume changed between two scans, and how much of the change lies in the scanned
/// folder. In bytes.
struct SpaceChange {
  Bytes freeBefore = 0;
  Bytes freeNow = 0;
  /// The growth of the scanned folder on this volume; absent if the scans cover different parts of it.
  std::optional<Bytes> inFolder = {};
  std::string root;

  /// The growth of everything else on the volume.
  std::optional<Bytes> elsewhere() const;

  bool operator==(const SpaceChange&) const = default;
};

/// A folder or file that shrank between two scans, or is gone. Sizes are in bytes.
struct Shrinkage {
  std::string path;
  /// Old size minus new size.
  Bytes delta = 0;
  /// The new size; 0 if the newer scan has no entry.
  Bytes size = 0;
  bool isDirectory = false;
  /// False also for an item that still exists, but is too small for an entry in the newer scan.
  bool isGone = false;

  bool operator==(const Shrinkage&) const = default;
};

/// Compares two scans of the same folder. What only one of them could see has neither grown nor shrunk: a
/// folder that could not be read, a volume that was not mounted. Pure; any thread.
namespace Changes {

inline constexpr std::size_t insideLimit = 8;

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

/// The folders and files that shrank by at least `minimum` bytes or are gone, largest first, at most `limit`.
/// Found by the same rule as `growth`, but also in folders that grew as a whole. Of a folder that is gone,
/// only the folder is listed. `exists` is asked whether there is still something at a path that the newer
/// scan has no entry for.
std::vector<Shrinkage> shrinkage(const GrowthArguments& arguments,
                                 const std::function<bool(const std::string& path)>& exists);

/// What became of the free space that the scans were stored with. `home` is the home folder, whose volume
/// that is in scans of the whole disk. Absent if the scans have different roots.
std::optional<SpaceChange> spaceChange(const Snapshot& from, const Snapshot& to, const std::string& home);

}  // namespace Changes

}  // namespace spacemint
