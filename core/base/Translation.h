#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace spacemint {

/// Texts in the user's language. A text is written in English, as a whole sentence, in the call; the
/// catalogues in po/ hold what it is in other languages. What a sentence says of a case stands in named
/// placeholders, which a translator can move: i18n("{size} in {place}", {{"size", size}, {"place", place}}).
/// Without a catalogue the answers are the English texts. Any thread, once `setUpTranslation` has returned.

/// What stands for "{name}" in a text.
struct Placeholder {
  std::string_view name;
  std::string_view value;
};
using Placeholders = std::initializer_list<Placeholder>;

/// In a window, the values in a sentence that runs from right to left are isolated from it, so that a path or
/// a number keeps its own order. A terminal would show the invisible characters for that.
enum class ShownIn : std::uint8_t { window, terminal };

/// Call at the start of main, before there are other threads, and again if a library has set the locale of
/// the process since. The language is the user's: LANGUAGE, else LC_ALL, LC_MESSAGES or LANG. `folder` has
/// the catalogues, as LANGUAGE/LC_MESSAGES/spacemint.mo. Numbers of the C library keep the form of programs.
void setUpTranslation(const std::string& folder, ShownIn shownIn = ShownIn::window);

/// The language of the sentences as an ICU locale, such as "de" or "pt_BR"; "en" without a catalogue.
const std::string& sentenceLanguage();

/// The text in the user's language, its placeholders filled in.
std::string i18n(const char* text, Placeholders values = {});
/// The same for a text whose meaning depends on where it stands. `context` says where, to translators only.
std::string i18nc(const char* context, const char* text, Placeholders values = {});
/// The same for a text whose form depends on a number. `one` is English for 1, `many` for all others. The
/// number itself is one more placeholder, in `values`.
std::string i18np(const char* one, const char* many, std::int64_t number, Placeholders values = {});

/// Marks a text in a table for the catalogue. Whoever shows the text calls i18n with it.
consteval const char* i18nMark(const char* text) {
  return text;
}

/// `text` with values for its placeholders, all in one pass: braces in a value stay as they are, and so do
/// names without a value.
std::string fillIn(std::string_view text, Placeholders values);

}  // namespace spacemint
