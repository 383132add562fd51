#include "core/base/Log.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <string>
#include <utility>

namespace spacemint {

namespace {

std::string timeNow() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  std::array<char, 32> text{};
  if (gmtime_r(&now, &parts) != nullptr) std::strftime(text.data(), text.size(), "%FT%TZ", &parts);
  return text.data();
}

// The log level for a value of SPACEMINT_LOG; 0 (nothing is logged) for a null or unknown value.
std::uint8_t levelNamed(const char* name) {
  const std::string_view level = name == nullptr ? "" : name;
  if (level == "debug") return std::to_underlying(LogLevel::debug);
  return level == "info" ? std::to_underlying(LogLevel::info) : 0;
}

}  // namespace

bool isLogged(LogLevel level) {
  static const std::uint8_t wanted = levelNamed(std::getenv("SPACEMINT_LOG"));
  return std::to_underlying(level) <= wanted;
}

void log(LogLevel level, std::string_view text) {
  if (!isLogged(level)) return;
  std::string line = timeNow() + " spacemint: " + std::string{text};
  std::ranges::replace_if(
      line, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }, '?');
  line += '\n';
  if (write(STDERR_FILENO, line.data(), line.size()) < 0) return;
}

}  // namespace spacemint
