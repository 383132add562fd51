#pragma once

#include "core/base/Date.h"

#include <optional>

namespace spacemint {

/// Dates as floating-point seconds after an epoch, the form in which files store dates. `epoch` is in seconds
/// after 1970-01-01 00:00:00 UTC. A date less than 2^32 seconds (136 years) from the epoch keeps its
/// microseconds in a round trip; dates farther away are rounded to the precision of a double. Pure; any
/// thread.

double secondsSince(std::chrono::seconds epoch, Date date);

/// The date `seconds` after `epoch`, rounded to the microsecond; absent if `seconds` is not finite or the
/// date is outside the range of `Date`.
std::optional<Date> dateAfter(std::chrono::seconds epoch, double seconds);

}  // namespace spacemint
