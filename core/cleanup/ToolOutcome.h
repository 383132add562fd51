#pragma once

#include "core/analysis/ToolState.h"
#include "core/cleanup/CleanupFailure.h"

#include <optional>
#include <string>
#include <string_view>

namespace spacemint {

/// Why a tool did not do its work; absent when it did. `tool` is a name or a path, of which the last part is
/// shown. No answer means that the tool could not be started.
std::optional<CleanupFailure> toolFailure(const std::string& tool,
                                          const std::optional<DevTools::ToolAnswer>& answer);

/// The line of a tool's error text that says why it failed: the first that begins like an error, else the
/// last that is no hint or reference to a log. "Unknown error" for a text without lines.
std::string toolReason(std::string_view text);

}  // namespace spacemint
