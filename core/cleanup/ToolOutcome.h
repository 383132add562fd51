#pragma once

#include "core/analysis/ToolState.h"
#include "core/cleanup/CleanupFailure.h"

#include <optional>
#include <string>
#include <string_view>

namespace spacemint {

/// Why a tool failed; absent if it succeeded. `tool` is the tool's name or path; the message shows the last
/// component. An absent `answer` means that the tool could not be started.
std::optional<CleanupFailure> toolFailure(const std::string& tool,
                                          const std::optional<DevTools::ToolAnswer>& answer);

/// The line of a tool's error output that gives the reason: the first line that begins like an error message,
/// otherwise the last line that is no hint. "Unknown error" if there is no line.
std::string toolReason(std::string_view text);

}  // namespace spacemint
