#include "core/cleanup/ToolOutcome.h"

#include "core/tree/Paths.h"

namespace spacemint {

namespace {

std::string_view trimmed(std::string_view line) {
  constexpr const char* blanks = " \t\r";
  const std::size_t first = line.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return line.substr(first, line.find_last_not_of(blanks) + 1 - first);
}

}  // namespace

std::string lastLine(std::string_view text) {
  while (!text.empty()) {
    const std::size_t lineBreak = text.rfind('\n');
    const std::size_t start = lineBreak == std::string_view::npos ? 0 : lineBreak + 1;
    const std::string_view line = trimmed(text.substr(start));
    if (!line.empty()) return std::string{line};
    text = text.substr(0, start == 0 ? 0 : lineBreak);
  }
  return "Unknown error";
}

std::optional<CleanupFailure> toolFailure(const ToolOutcome& outcome) {
  const std::string name = "`" + Paths::lastComponent(outcome.tool) + "`";
  if (!outcome.started) return CleanupFailure::other("couldn't find " + name + ".");
  if (outcome.timedOut) return CleanupFailure::other(name + " took too long and was stopped.");
  if (outcome.status == 0) return std::nullopt;
  return CleanupFailure::other(lastLine(outcome.error.empty() ? outcome.output : outcome.error));
}

}  // namespace spacemint
