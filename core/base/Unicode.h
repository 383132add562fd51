#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace spacemint {

/// File names and paths are bytes, UTF-8 by intent. Text that is not valid UTF-8 equals only itself.

bool isAscii(std::string_view text);
bool isValidUtf8(std::string_view text);

/// `text` with U+FFFD in the place of every sequence of bytes that is not UTF-8.
std::string withInvalidUtf8Replaced(std::string_view text);

/// UTF-16 text as UTF-8; U+FFFD in the place of what is not UTF-16. An odd last byte is left out; the text is
/// at most 2^31 bytes long.
std::string utf8FromUtf16(std::string_view bytes, bool isBigEndian);

/// Equality under Unicode canonical equivalence: a precomposed and a decomposed accent are equal.
bool canonicallyEqual(std::string_view a, std::string_view b);

/// One spelling for all texts that are canonically equal; text that is not valid UTF-8 as it is.
std::string canonicalForm(std::string_view text);

/// How many bytes of `text` spell `prefix` under canonical equivalence; absent when `text` does not begin
/// with it.
std::optional<std::size_t> canonicalPrefixLength(std::string_view text, std::string_view prefix);

}  // namespace spacemint
