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

/// Letters, and characters that are made for that: what can turn the order of what stands beside it.
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

std::string isolated(std::string_view text, std::string_view start) {
  std::string result{text};
  if (turnsOrder(text)) result.insert(0, start).append(end);
  return result;
}

}  // namespace

std::string isolatedName(std::string_view name) {
  return isolated(name, firstStrong);
}

std::string isolatedPath(std::string_view path) {
  return isolated(path, leftToRight);
}

}  // namespace spacemint
