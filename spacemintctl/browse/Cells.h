#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint::ctl {

/// Text in the cells of a terminal. A character takes the columns that the C library says for the process's
/// character set (`wcwidth`), as the terminal library counts them. Any thread.

/// `text` with U+FFFD in place of everything that is not shown as a character: control characters, those that
/// change the direction of text, and bytes that are not UTF-8. So a file name can neither control the
/// terminal nor look like another name.
std::string shownText(std::string_view text);

/// The number of columns that a text from `shownText` takes.
std::size_t columnsOf(std::string_view shown);

enum class Side : unsigned char { left, right };

/// `shown` in exactly `width` columns: filled with spaces on the other side than `side`, or cut with an "…".
/// A character that takes two columns is never cut in half.
std::string fitted(std::string_view shown, std::size_t width, Side side = Side::left);

/// The end of `shown` in at most `width` columns, with an "…" in front if it was cut: for paths, and for a
/// field in which someone types.
std::string endOf(std::string_view shown, std::size_t width);

/// Lines of at most `width` columns, broken at spaces where possible.
std::vector<std::string> wrapped(std::string_view shown, std::size_t width);

}  // namespace spacemint::ctl
