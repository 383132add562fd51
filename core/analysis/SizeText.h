#pragma once

#include "core/base/Bytes.h"

#include <optional>
#include <string_view>

namespace spacemint::DevTools {

/// The number of bytes in a tool's text such as "4.7 GB", "1.5GiB" or "512". Ignores text after the unit.
/// Known units are B, KB, MB, GB, TB, KiB, MiB and GiB, in any letter case. Absent without a number, with an
/// unknown unit, or if the result exceeds 64 bits.
std::optional<Bytes> parseSize(std::string_view text);

}  // namespace spacemint::DevTools
