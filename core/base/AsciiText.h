#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// Text of programs rather than of people: white space and letter case are those of ASCII.

constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// Without white space and line ends at both ends.
std::string_view trimmed(std::string_view text);

std::string upperCased(std::string_view text);
std::string lowerCased(std::string_view text);

/// The parts between separators, such as the names of a path; empty parts are left out.
std::vector<std::string_view> pieces(std::string_view text, char separator);

/// The lines of a text that are not empty.
inline std::vector<std::string_view> lines(std::string_view text) {
  return pieces(text, '\n');
}

}  // namespace spacemint
