#pragma once

#include "core/base/Date.h"

#include <optional>
#include <string>

namespace spacemint {

/// Calendar days in a time zone, by the rules that the zone had on the date in question. `timeZone` is a name
/// such as "Europe/Berlin"; the result is absent for a name that ICU's time zone tables do not contain. Any
/// thread.

bool isKnownTimeZone(const std::string& timeZone);

/// The day on which `date` falls in the zone.
std::optional<std::chrono::local_days> calendarDay(Date date, const std::string& timeZone);

/// The instant `days` calendar days before `date` at the same clock time. If the zone skips that clock time
/// on that day (clocks go forward), the result is one hour later; if the clock time occurs twice (clocks go
/// back), the result is the second one. Absent also if the result is outside the range of `Date`.
std::optional<Date> daysEarlier(Date date, int days, const std::string& timeZone);

}  // namespace spacemint
