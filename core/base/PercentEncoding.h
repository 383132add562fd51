#pragma once

#include <string>
#include <string_view>

namespace spacemint {

/// The bytes of a path as the path of a URI: all but letters, digits, "-", ".", "_", "~" and "/" become "%"
/// and two hexadecimal digits.
std::string percentEncoded(std::string_view path);

}  // namespace spacemint
