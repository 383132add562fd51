#include "core/base/AsciiText.h"

#include <algorithm>

namespace spacemint {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view whiteSpace = " \t\n\r\v\f";
  text.remove_prefix(std::min(text.find_first_not_of(whiteSpace), text.size()));
  return text.substr(0, text.find_last_not_of(whiteSpace) + 1);  // npos + 1 is 0
}

std::string upperCased(std::string_view text) {
  std::string result{text};
  for (char& c : result) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return result;
}

std::string lowerCased(std::string_view text) {
  std::string result{text};
  for (char& c : result) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return result;
}

std::vector<std::string_view> pieces(std::string_view text, char separator) {
  std::vector<std::string_view> result;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(separator), text.size());
    if (end > 0) result.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return result;
}

}  // namespace spacemint
