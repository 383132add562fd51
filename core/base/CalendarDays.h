#pragma once

#include "core/base/Date.h"

#include <optional>
#include <string>

namespace spacemint {

/// Calendar days as people in a time zone count them, by the rules the zone had at the time. A zone is a name
/// such as "Europe/Berlin"; what the time zone tables do not know gives an absent answer. Any thread.

bool isKnownTimeZone(const std::string& timeZone);

/// The day that `date` falls on in that zone.
std::optional<std::chrono::local_days> calendarDay(Date date, const std::string& timeZone);

/// The instant `days` calendar days before `date` at the same clock time. A clock time that the zone skips
/// on that day becomes the one an hour later; of one that it has twice the second is meant. Absent also where
/// the result is outside the range of `Date`.
std::optional<Date> daysEarlier(Date date, int days, const std::string& timeZone);

}  // namespace spacemint
