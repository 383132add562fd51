#pragma once

#include "core/base/Bytes.h"

#include <string>
#include <string_view>

namespace spacemint {

/// Byte counts as text, shared by the application and spacemintctl. Any thread.
namespace ByteFormat {

/// A short text such as "1.5 KB", in decimal units of 1,000. `locale` is an ICU locale identifier such as
/// "en_US"; it decides the decimal mark, the grouping and the minus sign.
/// The unit is that of the user's language.
std::string string(Bytes bytes, const std::string& locale);

}  // namespace ByteFormat

/// A whole number with the grouping of `locale`, such as "600,000". Any thread.
std::string groupedNumber(std::int64_t number, const std::string& locale);

/// A whole number as the sentences write it, whatever the locale: with the digits and the grouping of their
/// language. Any thread.
std::string numberText(std::int64_t number);

/// The same for a number with so many decimals, such as "0.015".
std::string numberText(double number, int decimals);

/// A text with the number as "{count}", in the user's language: of "{count} file" and "{count} files",
/// "600,000 files". Any thread.
std::string counted(std::int64_t number, const char* one, const char* many, const std::string& locale);

}  // namespace spacemint
