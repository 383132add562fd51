#pragma once

#include <string>

namespace spacemint {

/// Whether the system runs on batteries and each of them has less than a fifth left. `folder` is where the
/// kernel tells of power supplies: /sys/class/power_supply. False where it tells of no battery.
bool isBatteryLow(const std::string& folder);

}  // namespace spacemint
