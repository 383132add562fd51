#pragma once

#include "Spacemint/command/Shell.h"
#include "core/analysis/ToolState.h"

#include <optional>

namespace spacemint::ctl {

/// Runs a tool and waits for what it says; absent when it cannot be found or started.
std::optional<DevTools::ToolAnswer> runTool(const Shell& shell, Shell::Run run);

}  // namespace spacemint::ctl
