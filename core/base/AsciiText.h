#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// Functions on text that programs write. White space and letter case are those of ASCII. Pure; any thread.

constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// `text` without white space and line ends at its start and end. The result points into `text`.
std::string_view trimmed(std::string_view text);

std::string upperCased(std::string_view text);
std::string lowerCased(std::string_view text);

/// The parts between separators, such as the names of a path, without empty parts. The results point into
/// `text`.
std::vector<std::string_view> pieces(std::string_view text, char separator);

/// Whether a path is the folder or is below it, byte by byte. Both are absolute and without links.
constexpr bool isAtOrBelow(std::string_view path, std::string_view folder) {
  return path.starts_with(folder) &&
         (folder.ends_with('/') || path.size() == folder.size() || path[folder.size()] == '/');
}

/// The lines of a text that are not empty.
inline std::vector<std::string_view> lines(std::string_view text) {
  return pieces(text, '\n');
}

}  // namespace spacemint
