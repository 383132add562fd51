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

/// Directions of letters that can change the display order of the text beside them.
constexpr std::array turning{U_RIGHT_TO_LEFT, U_RIGHT_TO_LEFT_ARABIC, U_ARABIC_NUMBER};

bool turnsOrder(std::string_view text) {
  const auto letters =
      icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
  for (std::int32_t i = 0; i < letters.length(); i = letters.moveIndex32(i, 1)) {
    const UCharDirection direction = u_charDirection(letters.char32At(i));
    if (std::ranges::find(turning, direction) != turning.end()) return true;
  }
  return false;
}

/// U+202A to U+202E and U+2066 to U+2069: embeddings, overrides and isolates.
std::string withoutControls(std::string_view name) {
  std::string result{name};
  const auto isControl = [&](std::size_t at) {
    const std::string_view next = std::string_view{result}.substr(at, 3);
    return (next >= "\u202a" && next <= "\u202e") || (next >= "\u2066" && next <= "\u2069");
  };
  for (std::size_t at = result.find('\xE2'); at != std::string::npos; at = result.find('\xE2', at + 1)) {
    if (isControl(at)) result.replace(at, 3, "\uFFFD");
  }
  return result;
}

}  // namespace

std::string isolatedName(std::string_view name) {
  std::string result = withoutControls(name);
  if (turnsOrder(result)) result.insert(0, firstStrong).append(end);
  return result;
}

std::string isolatedPath(std::string_view path) {
  if (!turnsOrder(path)) return withoutControls(path);
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
