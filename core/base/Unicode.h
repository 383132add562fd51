#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace spacemint {

/// Functions on file names and paths, which are bytes and normally UTF-8. Text that is not valid UTF-8 equals
/// only itself. Pure; any thread.

bool isAscii(std::string_view text);
/// Returns the character at `at`, a position in the text, and moves `at` behind it. Negative, and one byte
/// further or more, if the bytes are not UTF-8.
std::int32_t nextCharacter(std::string_view text, std::size_t& at);
bool isValidUtf8(std::string_view text);

/// `text` with U+FFFD in place of every sequence of bytes that is not UTF-8.
std::string withInvalidUtf8Replaced(std::string_view text);

/// Converts UTF-16 to UTF-8, with U+FFFD in place of invalid UTF-16. An odd last byte is ignored. `bytes`
/// must not be longer than 2^31.
std::string utf8FromUtf16(std::string_view bytes, bool isBigEndian);

/// True if the texts are canonically equivalent in Unicode: a precomposed and a decomposed accent are equal.
bool canonicallyEqual(std::string_view a, std::string_view b);

/// A form that is the same for all canonically equal texts. Text that is not valid UTF-8 stays as it is.
std::string canonicalForm(std::string_view text);

/// A form that is the same for all texts that differ only in letter case or in canonically equal characters.
/// Text that is not valid UTF-8 stays as it is, but for its ASCII letters.
std::string caseFolded(std::string_view text);

/// The number of bytes at the start of `text` that are canonically equal to `prefix`; absent if `text` does
/// not begin with `prefix`.
std::optional<std::size_t> canonicalPrefixLength(std::string_view text, std::string_view prefix);

}  // namespace spacemint
