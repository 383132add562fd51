#pragma once

#include "core/base/Bytes.h"

#include <optional>
#include <string_view>

namespace spacemint::DevTools {

/// The bytes that a tool's text names, such as "4.7 GB", "1.5GiB" or "512"; what follows the unit does not
/// count. Units go up to TB and GiB. Absent for a text without a number, with another unit, or of more than
/// 64 bits.
std::optional<Bytes> parseSize(std::string_view text);

}  // namespace spacemint::DevTools
