#include "core/cleanup/ToolOutcome.h"

#include "core/base/AsciiText.h"
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

std::optional<CleanupFailure> trashFailure(const std::optional<DevTools::ToolAnswer>& answer) {
  if (!answer) return CleanupFailure::other("couldn't reach Finder.");
  if (answer->status == 0 && !answer->timedOut) return std::nullopt;
  const bool isForbidden = answer->error.find("-1743") != std::string::npos ||
                           lowerCased(answer->error).find("not authorized") != std::string::npos;
  if (isForbidden) return CleanupFailure::needsFinderPermission();
  return CleanupFailure::other(DevTools::lastLine(answer->error));
}

}  // namespace spacemint
