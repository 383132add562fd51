#include "core/base/Isolate.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <cstdint>

namespace spacemint {

namespace {

constexpr std::string_view leftToRight = "\u2066";
constexpr std::string_view firstStrong = "\u2068";
constexpr std::string_view end = "\u2069";

/// Directions of letters and formatting characters that can change the display order of the text beside them.
constexpr std::array turning{U_RIGHT_TO_LEFT,           U_RIGHT_TO_LEFT_ARABIC,   U_ARABIC_NUMBER,
                             U_RIGHT_TO_LEFT_EMBEDDING, U_RIGHT_TO_LEFT_OVERRIDE, U_RIGHT_TO_LEFT_ISOLATE};

bool turnsOrder(std::string_view text) {
  const auto letters =
      icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
  for (std::int32_t i = 0; i < letters.length(); i = letters.moveIndex32(i, 1)) {
    const UCharDirection direction = u_charDirection(letters.char32At(i));
    if (std::ranges::find(turning, direction) != turning.end()) return true;
  }
  return false;
}

}  // namespace

std::string isolatedName(std::string_view name) {
  std::string result{name};
  if (turnsOrder(name)) result.insert(0, firstStrong).append(end);
  return result;
}

std::string isolatedPath(std::string_view path) {
  if (!turnsOrder(path)) return std::string{path};
  std::string result{leftToRight};
  while (true) {
    const std::size_t slash = path.find('/');
    result += isolatedName(path.substr(0, slash));
    if (slash == std::string_view::npos) break;
    result += '/';
    path.remove_prefix(slash + 1);
  }
  return result.append(end);
}

}  // namespace spacemint
