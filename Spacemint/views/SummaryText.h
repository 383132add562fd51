#pragma once

#include "core/volume/SpaceLevel.h"
#include "core/volume/VolumeStatus.h"

#include <string>

namespace spacemint {

/// What is said of the free space at the top of the page.
namespace SummaryText {

/// "of 500 GB"
std::string total(const VolumeStatus& volume, const std::string& locale);
/// What the mark on the bar means.
std::string tickHelp(std::int64_t thresholdGB);
/// Where on the bar the warning begins, from 0 to 1.
double tickFraction(const VolumeStatus& volume, std::int64_t thresholdGB);

}  // namespace SummaryText

}  // namespace spacemint
