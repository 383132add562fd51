#include "core/cleanup/ToolOutcome.h"

#include "core/tree/Paths.h"

namespace spacemint {

std::optional<CleanupFailure> toolFailure(const std::string& tool,
                                          const std::optional<DevTools::ToolAnswer>& answer) {
  const std::string name = "`" + Paths::lastComponent(tool) + "`";
  if (!answer) return CleanupFailure::other("couldn't find " + name + ".");
  if (answer->timedOut) return CleanupFailure::other(name + " took too long and was stopped.");
  if (answer->status == 0) return std::nullopt;
  return CleanupFailure::other(DevTools::lastLine(answer->error.empty() ? answer->output : answer->error));
}

}  // namespace spacemint
