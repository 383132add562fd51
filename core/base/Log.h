#pragma once

#include <cstdint>
#include <string_view>

namespace spacemint {

/// The log says why the product decided as it did: why a scan walks everything, why a warning was not given,
/// which service was missing. It goes to standard error and is off unless the environment variable
/// SPACEMINT_LOG asks for it: "info" for decisions, "debug" for the repeated ones too.
enum class LogLevel : std::uint8_t { info = 1, debug = 2 };

/// True when lines of this level are written. Ask before composing a costly text. Any thread.
bool isLogged(LogLevel level);

/// Writes one line: the time in UTC, the program's name and `text`, whose control characters become "?". Any
/// thread; lines of several threads and processes do not mix, because each is one write. A failed write is
/// ignored.
void log(LogLevel level, std::string_view text);

/// The level that a value of SPACEMINT_LOG asks for; 0 for none, null or any other value.
std::uint8_t logLevelNamed(const char* name);

}  // namespace spacemint
