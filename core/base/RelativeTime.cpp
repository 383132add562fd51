#include "core/base/RelativeTime.h"

#include <unicode/reldatefmt.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cmath>
#include <ranges>

namespace spacemint {

namespace {

struct Unit {
  URelativeDateTimeUnit unit;
  double seconds;
};
constexpr Unit units[] = {{UDAT_REL_UNIT_YEAR, 365 * 86'400.0},
                          {UDAT_REL_UNIT_MONTH, 30 * 86'400.0},
                          {UDAT_REL_UNIT_WEEK, 7 * 86'400.0},
                          {UDAT_REL_UNIT_DAY, 86'400},
                          {UDAT_REL_UNIT_HOUR, 3'600},
                          {UDAT_REL_UNIT_MINUTE, 60},
                          {UDAT_REL_UNIT_SECOND, 1}};

}  // namespace

std::string RelativeTime::string(Date date, Date now, const std::string& locale) {
  return std::abs(Seconds{timeBetween(date, now)}.count()) < 60 ? "just now" : age(date, now, locale);
}

std::string RelativeTime::age(Date date, Date now, const std::string& locale) {
  const double seconds = Seconds{timeBetween(now, date)}.count();
  const auto* fitting =
      std::ranges::find_if(units, [&](const Unit& unit) { return std::abs(seconds) >= unit.seconds; });
  const Unit& unit = fitting == std::end(units) ? units[std::size(units) - 1] : *fitting;
  double number = std::trunc(seconds / unit.seconds);
  if (number == 0) number = -0.0;  // "0 seconds ago", not "in 0 seconds"

  UErrorCode status = U_ZERO_ERROR;
  // The interface is in English, so the words are English too; the region decides the format of the number.
  const icu::Locale english{"en", icu::Locale(locale.c_str()).getCountry()};
  const icu::RelativeDateTimeFormatter formatter{english, status};
  icu::UnicodeString text;
  std::string result;
  formatter.formatNumeric(number, unit.unit, text, status).toUTF8String(result);
  return result;
}

std::string RelativeTime::span(std::chrono::seconds length) {
  const auto hours = std::chrono::duration_cast<std::chrono::hours>(length).count();
  if (hours < 2) return "the last hour";
  if (hours < 48) return "the last " + std::to_string(hours) + " hours";
  return "the last " + std::to_string(std::chrono::duration_cast<std::chrono::days>(length).count()) +
         " days";
}

}  // namespace spacemint
