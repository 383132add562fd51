#include "AppServices/Today.h"

#include "core/base/CalendarDays.h"

#include <cstdio>

namespace spacemint {

std::string dayText(Date date, const std::string& timeZone) {
  const auto utc = std::chrono::local_days{std::chrono::floor<std::chrono::days>(date).time_since_epoch()};
  const std::chrono::year_month_day day{calendarDay(date, timeZone).value_or(utc)};
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(day.year()),
                static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()));
  return text;
}

}  // namespace spacemint
