#include "core/base/Translation.h"

#include <libintl.h>
#include <unicode/uloc.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>

namespace spacemint {

namespace {

constexpr const char* domain = "spacemint";

// Set by setUpTranslation only.
std::string language = "en";
bool isEnglish = true;
bool isRightToLeft = false;
bool marksDirection = false;  // for a window in a language from right to left

std::string_view environmentText(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

std::string_view chosenLocale() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    if (const auto value = environmentText(name); !value.empty()) return value;
  }
  return "";
}

// gettext translates only in a locale that the system has. Many systems have few: the language of another
// locale is then put into LANGUAGE, and the locale that every system has takes its place. The C library of
// Debian 13 does not translate in that one, so there the locale must be installed.
void setLocale() {
  std::setlocale(LC_CTYPE, "C.UTF-8");
  const std::string chosen{chosenLocale()};
  if (!chosen.empty() && std::setlocale(LC_MESSAGES, "") != nullptr) return;
  std::setlocale(LC_MESSAGES, "C.UTF-8");
  if (environmentText("LANGUAGE").empty() && !chosen.empty()) setenv("LANGUAGE", chosen.c_str(), 1);
}

// The line "Language: de" in the header of a catalogue, which is its translation of the empty text.
std::string languageOfCatalogue() {
  constexpr std::string_view key = "Language: ";
  const std::string_view header = dgettext(domain, "");
  const std::size_t at = header.find(key);
  if (at == std::string_view::npos) return "en";
  const std::string_view rest = header.substr(at + key.size());
  return std::string{rest.substr(0, rest.find('\n'))};
}

// Of three bytes.
bool isDirectionMark(std::string_view letter) {
  return letter == "\u200e" || letter == "\u200f" || (letter >= "\u2066" && letter <= "\u2069");
}

// A translator's marks of direction are for a window, too.
void appendText(std::string& text, std::string_view part) {
  if (!isRightToLeft || marksDirection) {
    text += part;
    return;
  }
  while (!part.empty()) {
    const bool isMark = isDirectionMark(part.substr(0, 3));
    if (!isMark) text += part.front();
    part.remove_prefix(isMark ? 3 : 1);
  }
}

void appendValue(std::string& text, std::string_view value) {
  constexpr std::string_view firstStrongIsolate = "\u2068";
  constexpr std::string_view popIsolate = "\u2069";
  if (marksDirection) text += firstStrongIsolate;
  text += value;
  if (marksDirection) text += popIsolate;
}

}  // namespace

void setUpTranslation(const std::string& folder, ShownIn shownIn) {
  setLocale();
  bindtextdomain(domain, folder.c_str());
  bind_textdomain_codeset(domain, "UTF-8");
  language = languageOfCatalogue();
  isEnglish = language == "en";
  isRightToLeft = uloc_isRightToLeft(language.c_str()) != 0;
  marksDirection = isRightToLeft && shownIn == ShownIn::window;
  // The system's own messages, such as those of errno, are then in English too.
  if (isEnglish) std::setlocale(LC_MESSAGES, "C");
}

const std::string& sentenceLanguage() {
  return language;
}

std::string i18n(const char* text, Placeholders values) {
  return fillIn(isEnglish ? text : dgettext(domain, text), values);
}

std::string i18nc(const char* context, const char* text, Placeholders values) {
  if (isEnglish) return fillIn(text, values);
  const std::string key = std::string{context} + '\004' + text;
  const char* found = dgettext(domain, key.c_str());
  return fillIn(found == key.c_str() ? text : found, values);
}

std::string i18np(const char* one, const char* many, std::int64_t number, Placeholders values) {
  if (isEnglish) return fillIn(number == 1 ? one : many, values);
  const auto count = static_cast<unsigned long>(number);
  return fillIn(dngettext(domain, one, many, number < 0 ? 0 - count : count), values);
}

std::string fillIn(std::string_view text, Placeholders values) {
  constexpr std::string_view rightToLeftMark = "\u200f";
  std::string filled{marksDirection && !text.empty() ? rightToLeftMark : ""};
  for (std::size_t open = text.find('{'); open != std::string_view::npos; open = text.find('{')) {
    appendText(filled, text.substr(0, open));
    text.remove_prefix(open);
    const std::string_view name = text.substr(1, std::min(text.find('}'), text.size()) - 1);
    const auto* found = std::ranges::find(values, name, &Placeholder::name);
    const bool isPlace = found != values.end() && name.size() + 2 <= text.size();
    if (isPlace) {
      appendValue(filled, found->value);
    } else {
      filled += '{';
    }
    text.remove_prefix(isPlace ? name.size() + 2 : 1);
  }
  appendText(filled, text);
  return filled;
}

}  // namespace spacemint
