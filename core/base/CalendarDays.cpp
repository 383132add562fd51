#include "core/base/CalendarDays.h"

#include <unicode/gregocal.h>
#include <unicode/timezone.h>

#include <memory>

namespace spacemint {

namespace {

using std::chrono::floor;
using std::chrono::milliseconds;

// Null for an unknown name. ICU would use Greenwich time for an unknown name.
std::unique_ptr<icu::TimeZone> zoneNamed(const std::string& name) {
  std::unique_ptr<icu::TimeZone> zone{icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name))};
  if (!zone || *zone == icu::TimeZone::getUnknown()) return nullptr;
  return zone;
}

// ICU's time: milliseconds since 1970, as a double.
UDate icuTime(Date date) {
  return static_cast<UDate>(floor<milliseconds>(date).time_since_epoch().count());
}

}  // namespace

bool isKnownTimeZone(const std::string& timeZone) {
  return zoneNamed(timeZone) != nullptr;
}

std::optional<std::chrono::local_days> calendarDay(Date date, const std::string& timeZone) {
  const auto zone = zoneNamed(timeZone);
  if (!zone) return std::nullopt;
  std::int32_t standard = 0;
  std::int32_t saving = 0;
  UErrorCode status = U_ZERO_ERROR;
  zone->getOffset(icuTime(date), false, standard, saving, status);
  if (U_FAILURE(status)) return std::nullopt;
  const auto clock = floor<milliseconds>(date).time_since_epoch() + milliseconds{standard + saving};
  return floor<std::chrono::days>(std::chrono::local_time<milliseconds>{clock});
}

std::optional<Date> daysEarlier(Date date, int days, const std::string& timeZone) {
  auto zone = zoneNamed(timeZone);
  std::int32_t change = 0;
  if (!zone || __builtin_sub_overflow(0, days, &change)) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  icu::GregorianCalendar calendar{zone.release(), status};
  calendar.setTime(icuTime(date), status);
  calendar.add(UCAL_DATE, change, status);
  const UDate moved = calendar.getTime(status);
  constexpr UDate farthest = 9.2e15;  // milliseconds that fit a Date
  if (U_FAILURE(status) || moved <= -farthest || moved >= farthest) return std::nullopt;
  const auto belowMillisecond = date - floor<milliseconds>(date);
  return Date{milliseconds{static_cast<std::int64_t>(moved)} + belowMillisecond};
}

}  // namespace spacemint
