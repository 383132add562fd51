#include "Spacemint/views/SummaryText.h"

#include "core/base/ByteFormat.h"

#include <algorithm>

namespace spacemint::SummaryText {

std::string total(const VolumeStatus& volume, const std::string& locale) {
  return "of " + ByteFormat::string(volume.total, locale);
}

std::string tickHelp(std::int64_t thresholdGB) {
  return "Warning below " + std::to_string(thresholdGB) + " GB free";
}

double tickFraction(const VolumeStatus& volume, std::int64_t thresholdGB) {
  if (volume.total < 1) return 0;
  const double warning = static_cast<double>(thresholdGB) * static_cast<double>(gigabyte);
  return std::clamp(1 - warning / static_cast<double>(volume.total), 0.0, 1.0);
}

}  // namespace spacemint::SummaryText
