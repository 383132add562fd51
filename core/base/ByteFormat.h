#pragma once

#include "core/base/Bytes.h"

#include <string>
#include <string_view>

namespace spacemint {

/// Byte counts as text, the same in both programs. Stateless; any thread.
namespace ByteFormat {

/// A short text such as "1.5 KB", in decimal units of 1,000. `locale` is an ICU locale identifier such as
/// "en_US"; it decides the decimal mark, the grouping and the minus sign.
std::string string(Bytes bytes, const std::string& locale);

}  // namespace ByteFormat

/// A whole number with the grouping of `locale`, such as "600,000".
std::string groupedNumber(std::int64_t number, const std::string& locale);

/// A number of things: "1 file", "600,000 files". `thing` is a singular whose plural ends in "s".
std::string counted(std::int64_t number, std::string_view thing, const std::string& locale);

}  // namespace spacemint
