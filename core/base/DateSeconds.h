#pragma once

#include "core/base/Date.h"

#include <optional>

namespace spacemint {

/// Dates as a floating number of seconds after some epoch, the form in which they are stored. The epoch is
/// given as seconds after 1970-01-01 00:00:00 UTC. A date less than 2^32 seconds from the epoch (136 years)
/// survives the way there and back to the microsecond; farther ones keep what a double holds.

double secondsSince(std::chrono::seconds epoch, Date date);

/// Rounded to the microsecond; absent where the instant is not finite or outside the range of `Date`.
std::optional<Date> dateAfter(std::chrono::seconds epoch, double seconds);

}  // namespace spacemint
