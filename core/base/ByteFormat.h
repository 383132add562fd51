#pragma once

#include "core/base/Bytes.h"

#include <string>
#include <string_view>

namespace spacemint {

/// Byte counts as text, shared by the application and spacemintctl. Any thread.
namespace ByteFormat {

/// A short text such as "1.5 KB", in decimal units of 1,000. `locale` is an ICU locale identifier such as
/// "en_US"; it decides the decimal mark, the grouping and the minus sign.
std::string string(Bytes bytes, const std::string& locale);

}  // namespace ByteFormat

/// A whole number with the grouping of `locale`, such as "600,000". Any thread.
std::string groupedNumber(std::int64_t number, const std::string& locale);

/// A number and a noun: "1 file", "600,000 files". `thing` is the singular of a noun whose plural adds "s".
/// Any thread.
std::string counted(std::int64_t number, std::string_view thing, const std::string& locale);

}  // namespace spacemint
