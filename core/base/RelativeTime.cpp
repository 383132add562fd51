#include "core/base/RelativeTime.h"

#include "core/base/Translation.h"

#include <unicode/reldatefmt.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <optional>
#include <ranges>
#include <string_view>
#include <system_error>

namespace spacemint {

namespace {

struct Unit {
  URelativeDateTimeUnit unit;
  double seconds;
  std::string_view english;
};
constexpr Unit units[] = {
    {UDAT_REL_UNIT_YEAR, 365 * 86'400.0, "year"}, {UDAT_REL_UNIT_MONTH, 30 * 86'400.0, "month"},
    {UDAT_REL_UNIT_WEEK, 7 * 86'400.0, "week"},   {UDAT_REL_UNIT_DAY, 86'400, "day"},
    {UDAT_REL_UNIT_HOUR, 3'600, "hour"},          {UDAT_REL_UNIT_MINUTE, 60, "minute"},
    {UDAT_REL_UNIT_SECOND, 1, "second"}};

// A negative number is an age.
std::string inWords(double number, const Unit& unit, const std::string& locale) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::RelativeDateTimeFormatter formatter{icu::Locale{RelativeTime::localeOfWords(locale).c_str()},
                                                 status};
  icu::UnicodeString text;
  std::string result;
  return formatter.formatNumeric(number, unit.unit, text, status).toUTF8String(result);
}

std::optional<int> spokenCount(std::string_view english) {
  if (english == "About a" || english == "About an") return 1;
  const char* const end = english.data() + english.size();
  int number = 0;
  const auto [read, problem] = std::from_chars(english.data(), end, number);
  return problem == std::errc{} && read == end ? std::optional{number} : std::nullopt;
}

}  // namespace

std::string RelativeTime::localeOfWords(const std::string& locale) {
  const icu::Locale numbers{locale.c_str()};
  const icu::Locale sentences{sentenceLanguage().c_str()};
  const bool isSame = std::string_view{numbers.getLanguage()} == sentences.getLanguage();
  return isSame ? locale : icu::Locale{sentences.getLanguage(), numbers.getCountry()}.getName();
}

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
  return inWords(number, unit, locale);
}

std::string RelativeTime::translated(const std::string& english) {
  if (sentenceLanguage() == "en") return english;
  if (english == "Less than a second ago") return i18n("just now");
  constexpr std::string_view ago = " ago";
  std::string_view rest{english};
  if (!rest.ends_with(ago)) return english;
  rest.remove_suffix(ago.size());
  const std::size_t gap = std::min(rest.rfind(' '), rest.size());
  const std::string_view amount = rest.substr(0, gap);
  rest.remove_prefix(std::min(gap + 1, rest.size()));
  if (rest.ends_with('s')) rest.remove_suffix(1);
  const auto* unit = std::ranges::find(units, rest, &Unit::english);
  const auto number = spokenCount(amount);
  if (unit == std::end(units) || !number) return english;
  return inWords(-static_cast<double>(*number), *unit, sentenceLanguage());
}

}  // namespace spacemint
