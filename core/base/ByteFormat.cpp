#include "core/base/ByteFormat.h"

#include "core/base/Translation.h"

#include <unicode/numberformatter.h>

#include <array>
#include <cmath>
#include <map>
#include <string_view>

namespace spacemint {

namespace {

using icu::number::LocalizedNumberFormatter;

// From 1,000 bytes on. Below, "bytes" is a noun with a plural.
constexpr std::array<const char*, 5> unitTexts{i18nMark("{number} KB"), i18nMark("{number} MB"),
                                               i18nMark("{number} GB"), i18nMark("{number} TB"),
                                               i18nMark("{number} PB")};

// Creating a formatter costs far more than using it, and a program shows its numbers in one locale or two:
// cache the formatters.
struct Formatters {
  explicit Formatters(const std::string& locale) : whole(make(locale, 0)), tenths(make(locale, 1)) {}

  static LocalizedNumberFormatter make(const std::string& locale, int maximumFraction) {
    return icu::number::NumberFormatter::withLocale(icu::Locale(locale.c_str()))
        .precision(icu::number::Precision::minMaxFraction(0, maximumFraction))
        .roundingMode(UNUM_ROUND_HALFEVEN);
  }

  LocalizedNumberFormatter whole;
  LocalizedNumberFormatter tenths;
};

const Formatters& formatters(const std::string& locale) {
  thread_local std::map<std::string, Formatters> cached;
  const auto found = cached.find(locale);
  return found != cached.end() ? found->second : cached.emplace(locale, locale).first->second;
}

}  // namespace

std::string ByteFormat::string(Bytes bytes, const std::string& locale) {
  auto value = static_cast<double>(bytes);
  std::size_t unit = 0;
  // 999.5 rounds to 1,000, which is shown in the next unit.
  while (std::abs(value) >= 999.5 && unit < unitTexts.size()) {
    value /= 1'000;
    ++unit;
  }
  const Formatters& format = formatters(locale);
  const bool showsTenths = unit > 0 && std::abs(value) < 99.95;
  UErrorCode status = U_ZERO_ERROR;
  std::string number;
  (showsTenths ? format.tenths : format.whole)
      .formatDouble(value, status)
      .toString(status)
      .toUTF8String(number);
  if (U_FAILURE(status) || number.empty()) number = std::to_string(static_cast<std::int64_t>(value));
  if (unit > 0) return i18n(unitTexts.at(unit - 1), {{"number", number}});
  return i18np("{number} bytes", "{number} bytes", bytes, {{"number", number}});
}

std::string groupedNumber(std::int64_t number, const std::string& locale) {
  UErrorCode status = U_ZERO_ERROR;
  std::string text;
  formatters(locale).whole.formatInt(number, status).toString(status).toUTF8String(text);
  return U_FAILURE(status) || text.empty() ? std::to_string(number) : text;
}

std::string numberText(std::int64_t number) {
  return groupedNumber(number, sentenceLanguage());
}

std::string numberText(double number, int decimals) {
  UErrorCode status = U_ZERO_ERROR;
  std::string text;
  icu::number::NumberFormatter::withLocale(icu::Locale(sentenceLanguage().c_str()))
      .precision(icu::number::Precision::fixedFraction(decimals))
      .grouping(UNUM_GROUPING_OFF)
      .formatDouble(number, status)
      .toString(status)
      .toUTF8String(text);
  return U_FAILURE(status) ? std::to_string(number) : text;
}

std::string counted(std::int64_t number, const char* one, const char* many, const std::string& locale) {
  return i18np(one, many, number, {{"count", groupedNumber(number, locale)}});
}

}  // namespace spacemint
