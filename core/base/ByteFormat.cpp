#include "core/base/ByteFormat.h"

#include <unicode/numberformatter.h>

#include <array>
#include <cmath>
#include <memory>
#include <string_view>

namespace spacemint {

namespace {

using icu::number::LocalizedNumberFormatter;

constexpr std::array<std::string_view, 6> unitNames{"bytes", "KB", "MB", "GB", "TB", "PB"};

// Creating a formatter costs far more than using it, and a program shows all numbers in one locale: cache the
// formatters of the last locale.
struct Formatters {
  explicit Formatters(const std::string& name) : locale(name), whole(make(name, 0)), tenths(make(name, 1)) {}

  static LocalizedNumberFormatter make(const std::string& locale, int maximumFraction) {
    return icu::number::NumberFormatter::withLocale(icu::Locale(locale.c_str()))
        .precision(icu::number::Precision::minMaxFraction(0, maximumFraction))
        .roundingMode(UNUM_ROUND_HALFEVEN);
  }

  std::string locale;
  LocalizedNumberFormatter whole;
  LocalizedNumberFormatter tenths;
};

const Formatters& formatters(const std::string& locale) {
  thread_local std::unique_ptr<Formatters> cached;
  if (!cached || cached->locale != locale) cached = std::make_unique<Formatters>(locale);
  return *cached;
}

}  // namespace

std::string ByteFormat::string(Bytes bytes, const std::string& locale) {
  auto value = static_cast<double>(bytes);
  std::size_t unit = 0;
  // 999.5 rounds to 1,000, which is shown in the next unit.
  while (std::abs(value) >= 999.5 && unit + 1 < unitNames.size()) {
    value /= 1'000;
    ++unit;
  }
  const Formatters& format = formatters(locale);
  const bool showsTenths = unit > 0 && std::abs(value) < 99.95;
  UErrorCode status = U_ZERO_ERROR;
  std::string text;
  (showsTenths ? format.tenths : format.whole)
      .formatDouble(value, status)
      .toString(status)
      .toUTF8String(text);
  if (U_FAILURE(status) || text.empty()) text = std::to_string(static_cast<std::int64_t>(value));
  text += ' ';
  text += unitNames.at(unit);
  return text;
}

std::string groupedNumber(std::int64_t number, const std::string& locale) {
  UErrorCode status = U_ZERO_ERROR;
  std::string text;
  formatters(locale).whole.formatInt(number, status).toString(status).toUTF8String(text);
  return U_FAILURE(status) || text.empty() ? std::to_string(number) : text;
}

std::string counted(std::int64_t number, std::string_view thing, const std::string& locale) {
  std::string text = groupedNumber(number, locale) + ' ';
  text += thing;
  if (number != 1) text += 's';
  return text;
}

}  // namespace spacemint
