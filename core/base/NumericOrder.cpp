#include "core/base/NumericOrder.h"

#include <algorithm>

namespace spacemint {

namespace {

constexpr bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

// Removes the digits from the front of `text` and returns them without leading zeros.
std::string_view takeNumber(std::string_view& text) {
  const auto end = static_cast<std::size_t>(std::ranges::find_if_not(text, isDigit) - text.begin());
  std::string_view number = text.substr(0, end);
  text.remove_prefix(end);
  number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
  return number;
}

}  // namespace

std::weak_ordering numericOrder(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    if (isDigit(a.front()) && isDigit(b.front())) {
      const std::string_view left = takeNumber(a);
      const std::string_view right = takeNumber(b);
      if (left.size() != right.size()) return left.size() <=> right.size();
      if (left != right) return left <=> right;
      continue;
    }
    const auto left = static_cast<unsigned char>(a.front());
    const auto right = static_cast<unsigned char>(b.front());
    if (left != right) return left <=> right;
    a.remove_prefix(1);
    b.remove_prefix(1);
  }
  return a.size() <=> b.size();
}

}  // namespace spacemint
