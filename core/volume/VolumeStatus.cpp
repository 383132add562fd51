#include "core/volume/VolumeStatus.h"

#include "core/base/Translation.h"

#include <algorithm>

namespace spacemint {

Bytes VolumeStatus::used() const {
  return std::max<Bytes>(0, saturatingSubtract(total, free));
}

double VolumeStatus::usedFraction() const {
  return total < 1 ? 0 : static_cast<double>(used()) / static_cast<double>(total);
}

std::optional<VolumeStatus> VolumeStatus::current(const std::string& path) {
  const auto info = readVolumeInfo(path);
  return info ? from(*info) : std::nullopt;
}

std::optional<VolumeStatus> VolumeStatus::from(const VolumeInfo& info) {
  if (!info.total) return std::nullopt;
  return VolumeStatus{.name = info.name.value_or(i18n("System")),
                      .total = *info.total,
                      .free = info.availableForImportantUsage ? *info.availableForImportantUsage
                                                              : info.available.value_or(0)};
}

}  // namespace spacemint
