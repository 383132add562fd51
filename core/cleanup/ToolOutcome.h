#pragma once

#include "core/analysis/ToolState.h"
#include "core/cleanup/CleanupFailure.h"

#include <optional>
#include <string>

namespace spacemint {

/// Why a tool did not do what it was run for; absent when it did. `tool` is a name or a path, which counts by
/// its last part; there is no answer where it could not be started.
std::optional<CleanupFailure> toolFailure(const std::string& tool,
                                          const std::optional<DevTools::ToolAnswer>& answer);

}  // namespace spacemint
