#include "core/volume/Supply.h"

namespace spacemint {

namespace {

// Some file systems invent the number of files that fit.
bool countsFiles(const VolumeReading& reading) {
  return reading.space->files && !reading.volume.fileSystem.starts_with("fuse");
}

}  // namespace

bool mayWarnAbout(const VolumeReading& reading) {
  return reading.space && reading.volume.canFillUp() && reading.space->total >= gigabyte;
}

std::vector<Supply> suppliesOf(const VolumeReading& reading, std::int64_t thresholdGB) {
  if (!mayWarnAbout(reading)) return {};
  const Volume& volume = reading.volume;
  const Space& space = *reading.space;
  std::vector<Supply> supplies;
  Supply supply{.pool = volume.holdsHome ? 0 : volume.pool, .name = volume.name, .free = space.free};
  if (!volume.holdsHome) {
    supply.limits = volumeLimits(saturatingAdd(space.used, space.free), thresholdGB);
    supplies.push_back(supply);
  }
  if (!countsFiles(reading)) return supplies;
  supply.resource = Resource::files;
  supply.free = space.files->free;
  supply.limits = fileLimits(space.files->total);
  supplies.push_back(supply);
  return supplies;
}

}  // namespace spacemint
