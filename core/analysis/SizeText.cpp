#include "core/analysis/SizeText.h"

#include "core/base/AsciiText.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace spacemint::DevTools {

namespace {

struct Unit {
  std::string_view name;
  double bytes;
};
constexpr Unit units[] = {{"", 1},        {"B", 1},           {"KB", 1e3},
                          {"MB", 1e6},    {"GB", 1e9},        {"TB", 1e12},
                          {"KIB", 1'024}, {"MIB", 1'048'576}, {"GIB", 1'073'741'824}};

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// Bytes beyond ASCII count as letters, so that a unit with such a byte is unknown.
bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
}

// Removes a decimal number from the front of `text` and returns the number.
std::optional<double> takeNumber(std::string_view& text) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  // std::from_chars would accept words such as "inf".
  const std::size_t first = text.find_first_not_of("-.");
  if (first == std::string_view::npos || !isDigit(text[first])) return std::nullopt;
  double value = 0;
  const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (problem != std::errc{}) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return value;
}

}  // namespace

std::optional<Bytes> parseSize(std::string_view text) {
  text = trimmed(text);
  const auto number = takeNumber(text);
  if (!number) return std::nullopt;
  text = trimmed(text);
  const auto* unitEnd = std::ranges::find_if_not(text, isLetter);
  const std::string unit = upperCased({text.begin(), unitEnd});
  const auto* known = std::ranges::find(units, unit, &Unit::name);
  if (known == std::end(units)) return std::nullopt;
  const double bytes = std::round(*number * known->bytes);
  if (!(std::abs(bytes) < 0x1p63)) return std::nullopt;
  return static_cast<Bytes>(bytes);
}

}  // namespace spacemint::DevTools
