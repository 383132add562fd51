#include "core/base/TextList.h"

#include "core/base/Translation.h"

#include <unicode/listformatter.h>
#include <unicode/unistr.h>

#include <cstdint>
#include <memory>

namespace spacemint {

namespace {

std::string joined(const std::vector<std::string>& words, UListFormatterType type) {
  if (words.size() < 2) return words.empty() ? "" : words.front();
  // The English of the United Kingdom has no comma before "and".
  const std::string& language = sentenceLanguage();
  const icu::Locale locale{language == "en" ? "en_GB" : language.c_str()};
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::ListFormatter> formatter{
      icu::ListFormatter::createInstance(locale, type, ULISTFMT_WIDTH_SHORT, status)};
  std::vector<icu::UnicodeString> items;
  for (const std::string& word : words) items.push_back(icu::UnicodeString::fromUTF8(word));
  icu::UnicodeString list;
  if (U_SUCCESS(status))
    formatter->format(items.data(), static_cast<std::int32_t>(items.size()), list, status);
  std::string text;
  return list.toUTF8String(text);
}

template <typename Pair>
std::string folded(const std::vector<std::string>& parts, Pair pair) {
  std::string text;
  for (const std::string& part : parts) {
    if (!part.empty()) text = text.empty() ? part : pair(text, part);
  }
  return text;
}

}  // namespace

std::string listed(const std::vector<std::string>& words) {
  return joined(words, ULISTFMT_TYPE_AND);
}

std::string enumerated(const std::vector<std::string>& words) {
  return joined(words, ULISTFMT_TYPE_UNITS);
}

std::string sentences(const std::vector<std::string>& parts) {
  return folded(parts, [](const std::string& first, const std::string& next) {
    return i18nc("one whole sentence after the other", "{first} {next}", {{"first", first}, {"next", next}});
  });
}

std::string facts(const std::vector<std::string>& parts) {
  return folded(parts, [](const std::string& first, const std::string& next) {
    return i18nc("short facts on one line", "{first} · {next}", {{"first", first}, {"next", next}});
  });
}

}  // namespace spacemint
