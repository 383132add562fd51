#include "core/base/RelativeTime.h"

#include "core/base/Translation.h"

#include <unicode/reldatefmt.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cmath>
#include <ranges>
#include <string_view>

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

// The language of the sentences with the region of `locale`, so that the words never are in another language
// than the sentence around them.
icu::Locale localeOfWords(const std::string& locale) {
  const icu::Locale numbers{locale.c_str()};
  const icu::Locale sentences{sentenceLanguage().c_str()};
  const bool isSame = std::string_view{numbers.getLanguage()} == sentences.getLanguage();
  return isSame ? numbers : icu::Locale{sentences.getLanguage(), numbers.getCountry()};
}

}  // namespace

std::string RelativeTime::string(Date date, Date now, const std::string& locale) {
  return std::abs(Seconds{timeBetween(date, now)}.count()) < 60 ? i18n("just now") : age(date, now, locale);
}

std::string RelativeTime::age(Date date, Date now, const std::string& locale) {
  const double seconds = Seconds{timeBetween(now, date)}.count();
  const auto* fitting =
      std::ranges::find_if(units, [&](const Unit& unit) { return std::abs(seconds) >= unit.seconds; });
  const Unit& unit = fitting == std::end(units) ? units[std::size(units) - 1] : *fitting;
  double number = std::trunc(seconds / unit.seconds);
  if (number == 0) number = -0.0;  // "0 seconds ago", not "in 0 seconds"

  UErrorCode status = U_ZERO_ERROR;
  const icu::RelativeDateTimeFormatter formatter{localeOfWords(locale), status};
  icu::UnicodeString text;
  std::string result;
  formatter.formatNumeric(number, unit.unit, text, status).toUTF8String(result);
  return result;
}

}  // namespace spacemint
