#pragma once

#include <cstdint>
#include <string_view>

namespace spacemint {

/// The log gives the reasons for decisions: why a scan is a full one, why no warning was shown, which
/// service is missing. The log goes to standard error. The environment variable SPACEMINT_LOG turns the log
/// on: "info" logs decisions, "debug" also those that are repeated often.
enum class LogLevel : std::uint8_t { info = 1, debug = 2 };

/// True if lines of this level are written. Call this before composing an expensive text. Any thread.
bool isLogged(LogLevel level);

/// Writes one line: the time in UTC, the program's name and `text`, with "?" in place of control characters.
/// Any thread: each line is a single write(), so lines of several threads and processes do not mix. A failed
/// write is ignored.
void log(LogLevel level, std::string_view text);

}  // namespace spacemint
