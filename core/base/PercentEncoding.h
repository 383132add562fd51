#pragma once

#include <string>
#include <string_view>

namespace spacemint {

/// Encodes a file path as the path of a URI. All bytes except letters, digits, "-", ".", "_", "~" and "/"
/// become "%" and two hexadecimal digits. Any thread.
std::string percentEncoded(std::string_view path);

}  // namespace spacemint
