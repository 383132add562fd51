#pragma once

#include <string>
#include <string_view>

namespace spacemint {

/// A name or a path as a piece of a sentence. One in which letters run from right to left is set apart, so
/// that the words and numbers around it keep their order; all others stay as they are.

/// The direction of the first strong letter applies to the whole name.
std::string isolatedName(std::string_view name);
/// The folders of a path run from left to right, whatever letters are in their names.
std::string isolatedPath(std::string_view path);

}  // namespace spacemint
