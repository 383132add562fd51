#include "core/base/DateWords.h"

#include "core/base/RelativeTime.h"

#include <unicode/dtptngen.h>
#include <unicode/smpdtfmt.h>
#include <unicode/unistr.h>

#include <map>
#include <memory>
#include <utility>

namespace spacemint {

namespace {

using CachedFormat = std::unique_ptr<icu::SimpleDateFormat>;

CachedFormat makeDateFormat(const icu::Locale& locale, const char* skeleton) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::DateTimePatternGenerator> patterns{
      icu::DateTimePatternGenerator::createInstance(locale, status)};
  if (U_FAILURE(status)) return nullptr;
  const icu::UnicodeString pattern = patterns->getBestPattern(icu::UnicodeString{skeleton}, status);
  auto format = std::make_unique<icu::SimpleDateFormat>(pattern, locale, status);
  return U_SUCCESS(status) ? std::move(format) : nullptr;
}

}  // namespace

std::string dateInWords(Date date, const char* skeleton, const std::string& locale) {
  // Making a format costs far more than using it, and a list shows a date in each row.
  thread_local std::map<std::pair<std::string, std::string>, CachedFormat> cached;
  const std::string words = RelativeTime::localeOfWords(locale);
  CachedFormat& format = cached[{words, skeleton}];
  if (!format) format = makeDateFormat(icu::Locale{words.c_str()}, skeleton);
  if (!format) return "";
  icu::UnicodeString text;
  std::string result;
  format->format(std::chrono::duration<double, std::milli>{date.time_since_epoch()}.count(), text);
  return text.toUTF8String(result);
}

}  // namespace spacemint
