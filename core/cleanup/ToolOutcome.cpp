#include "core/cleanup/ToolOutcome.h"

#include "core/base/AsciiText.h"
#include "core/base/Translation.h"
#include "core/tree/Paths.h"

#include <algorithm>
#include <array>

namespace spacemint {

namespace {

// npm starts each line of an error message with one of these.
constexpr std::array<std::string_view, 2> prefixes{"npm error ", "npm ERR! "};
// Beginnings of lines that give the reason.
constexpr std::array<std::string_view, 5> reasons{
    "fatal: ", "error: ", "error response from daemon: ", "error:  ", "err_"};
// Beginnings of lines that are hints or details.
constexpr std::array<std::string_view, 12> details{"a complete log of this run",
                                                   "use '",
                                                   "use \"",
                                                   "see '",
                                                   "see \"",
                                                   "run '",
                                                   "run \"",
                                                   "try '",
                                                   "syscall ",
                                                   "errno ",
                                                   "path ",
                                                   "hint: "};

bool beginsWithOneOf(std::string_view line, auto&& beginnings) {
  const std::string lower = lowerCased(line);
  return std::ranges::any_of(beginnings, [&](std::string_view each) { return lower.starts_with(each); });
}

std::string_view withoutPrefix(std::string_view line) {
  for (const std::string_view prefix : prefixes) {
    if (line.starts_with(prefix)) return trimmed(line.substr(prefix.size()));
  }
  return line;
}

}  // namespace

std::string toolReason(std::string_view text) {
  std::string_view last;
  for (std::string_view line : lines(text)) {
    line = withoutPrefix(trimmed(line));
    if (beginsWithOneOf(line, reasons)) return std::string{line};
    if (!line.empty() && !beginsWithOneOf(line, details)) last = line;
  }
  return last.empty() ? DevTools::lastLine(text) : std::string{last};
}

std::optional<CleanupFailure> toolFailure(const std::string& tool,
                                          const std::optional<DevTools::ToolAnswer>& answer) {
  const std::string name = "`" + Paths::lastComponent(tool) + "`";
  if (!answer) return CleanupFailure::other(i18n("couldn't find {program}.", {{"program", name}}));
  if (answer->timedOut)
    return CleanupFailure::other(i18n("{program} took too long and was stopped.", {{"program", name}}));
  if (answer->status == 0) return std::nullopt;
  return CleanupFailure::other(toolReason(answer->error.empty() ? answer->output : answer->error));
}

}  // namespace spacemint
