#pragma once

#include "core/base/Date.h"
#include "core/base/Error.h"

#include <expected>
#include <string>
#include <vector>

namespace spacemint {

/// The capacity and free space of a volume at one time, in bytes.
struct FreeSpaceReading {
  Date date;
  Bytes free = 0;
  Bytes total = 0;

  bool operator==(const FreeSpaceReading&) const = default;
};

/// The free space of one volume over the last 14 days, one reading an hour, in a file of fixed size
/// (docs/formats/free-space.md). The object holds only the path. Readings survive a writer that is killed;
/// damage loses only the readings that it hits. Blocks for the disk; any thread, any process.
struct FreeSpaceRecord {
  static constexpr std::chrono::days kept{14};

  std::string path;

  /// The record of the volume that is mounted at `mountPoint`, in the user's folder for programs' state.
  static FreeSpaceRecord ofVolume(const std::string& stateFolder, const std::string& mountPoint);

  /// The readings of the 14 days before `now`, oldest first. Hours in which nothing was read are absent.
  /// After the clock was set back, readings that are dated later than a newer reading are left out. Empty if
  /// the file is missing or cannot be read.
  std::vector<FreeSpaceReading> readings(Date now) const;

  /// Adds a reading, unless the newest one is of the same hour. Creates the file and its folder if they are
  /// missing, at their full size, so that a full disk stops no later reading. Replaces a file that is no such
  /// record.
  std::expected<void, Error> add(const FreeSpaceReading& reading) const;
};

}  // namespace spacemint
