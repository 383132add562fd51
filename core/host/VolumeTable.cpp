#include "core/host/VolumeTable.h"

#include <algorithm>

namespace spacemint {

const std::string& Volume::mountPoint() const {
  const auto length = [](const VolumePlace& place) { return place.mountPoint.size(); };
  return std::ranges::min_element(places, {}, length)->mountPoint;
}

}  // namespace spacemint
