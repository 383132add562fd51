#pragma once

#include "core/history/FreeSpaceRecord.h"

#include <string>
#include <vector>

namespace spacemint::ctl {

/// The readings as text: a line for each day of the user's time zone, with a bar for each hour and the lowest
/// and highest free space of the day. `readings` are ordered by time; `locale` is an ICU locale.
std::string freeSpaceText(const std::vector<FreeSpaceReading>& readings, const std::string& locale);

}  // namespace spacemint::ctl
