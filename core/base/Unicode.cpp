#include "core/base/Unicode.h"

#include "core/base/AsciiText.h"

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace spacemint {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"  // inside ICU's macro
#pragma GCC diagnostic ignored "-Wsign-conversion"
std::int32_t nextCharacter(std::string_view text, std::size_t& at) {
  UChar32 character = 0;
  U8_NEXT(text.data(), at, text.size(), character);  // NOLINT(bugprone-inc-dec-in-conditions): the macro
  return character;
}
#pragma GCC diagnostic pop

namespace {

const icu::Normalizer2& decomposition() {
  static const icu::Normalizer2& instance = [] -> const icu::Normalizer2& {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* found = icu::Normalizer2::getNFDInstance(status);
    if (U_FAILURE(status) || found == nullptr) std::abort();  // cannot fail: ICU has this table compiled in
    return *found;
  }();
  return instance;
}

icu::UnicodeString utf16(std::string_view text) {
  return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

icu::UnicodeString decomposed(std::string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  return decomposition().normalize(utf16(text), status);
}

// Texts of different bytes can be canonically equivalent only if at least one of them is not ASCII.
bool mayBeEquivalent(std::string_view a, std::string_view b) {
  return !(isAscii(a) && isAscii(b)) && isValidUtf8(a) && isValidUtf8(b);
}

// The end of the run of ASCII characters that starts at `at`. Compares eight bytes at a time.
std::size_t asciiEnd(std::string_view text, std::size_t at) {
  constexpr std::uint64_t highBits = 0x8080808080808080;
  std::uint64_t eight = 0;
  for (; at + sizeof eight <= text.size(); at += sizeof eight) {
    std::memcpy(&eight, text.data() + at, sizeof eight);
    if ((eight & highBits) != 0) break;
  }
  while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) ++at;
  return at;
}

// The end of the run of characters from `start` that can be decomposed independently of the characters behind
// it.
std::size_t segmentEnd(std::string_view text, std::size_t start) {
  std::size_t at = start;
  nextCharacter(text, at);
  for (std::size_t next = at; next < text.size(); at = next) {
    if (decomposition().hasBoundaryBefore(nextCharacter(text, next))) break;
  }
  return at;
}

}  // namespace

bool isAscii(std::string_view text) {
  return asciiEnd(text, 0) == text.size();
}

bool isValidUtf8(std::string_view text) {
  for (std::size_t at = asciiEnd(text, 0); at < text.size(); at = asciiEnd(text, at)) {
    if (nextCharacter(text, at) < 0) return false;
  }
  return true;
}

std::string withInvalidUtf8Replaced(std::string_view text) {
  std::string result;
  std::size_t taken = 0;
  for (std::size_t at = asciiEnd(text, 0); at < text.size(); at = asciiEnd(text, at)) {
    const std::size_t start = at;
    if (nextCharacter(text, at) >= 0) continue;
    result += text.substr(taken, start - taken);
    result += "\xef\xbf\xbd";
    taken = at;
  }
  return result += text.substr(taken);
}

std::string utf8FromUtf16(std::string_view bytes, bool isBigEndian) {
  icu::UnicodeString units(static_cast<std::int32_t>(bytes.size() / 2), 0, 0);
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    const auto first = static_cast<unsigned char>(bytes[at]);
    const auto second = static_cast<unsigned char>(bytes[at + 1]);
    units.append(static_cast<char16_t>(isBigEndian ? first << 8 | second : second << 8 | first));
  }
  std::string text;
  units.toUTF8String(text);
  return text;
}

bool canonicallyEqual(std::string_view a, std::string_view b) {
  if (a == b) return true;
  return mayBeEquivalent(a, b) && decomposed(a) == decomposed(b);
}

std::string canonicalForm(std::string_view text) {
  if (isAscii(text) || !isValidUtf8(text)) return std::string{text};
  std::string form;
  decomposed(text).toUTF8String(form);
  return form;
}

std::string caseFolded(std::string_view text) {
  if (isAscii(text) || !isValidUtf8(text)) return lowerCased(text);
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* composition = icu::Normalizer2::getNFCInstance(status);
  if (U_FAILURE(status)) return std::string{text};
  std::string folded;
  composition->normalize(decomposed(text).foldCase(), status).toUTF8String(folded);
  return folded;
}

std::optional<std::size_t> canonicalPrefixLength(std::string_view text, std::string_view prefix) {
  if (text.starts_with(prefix)) return prefix.size();
  if (!mayBeEquivalent(text, prefix)) return std::nullopt;
  const icu::UnicodeString wanted = decomposed(prefix);
  icu::UnicodeString seen;
  std::size_t at = 0;
  while (at < text.size() && seen.length() < wanted.length()) {
    const std::size_t end = segmentEnd(text, at);
    seen += decomposed(text.substr(at, end - at));
    at = end;
  }
  if (seen != wanted) return std::nullopt;
  return at;
}

}  // namespace spacemint
