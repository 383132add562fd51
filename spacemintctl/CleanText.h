#pragma once

#include "core/cleanup/Cleanup.h"
#include "spacemintctl/Section.h"

#include <string>
#include <vector>

namespace spacemint::ctl {

/// Exactly what a plan will do: sizes, paths and commands. `leftOut` says why something that one might expect
/// is not in it.
std::string planText(const CleanupPlan& plan, const std::vector<std::string>& leftOut,
                     const Wording& wording);

Json planJson(const CleanupPlan& plan);

/// The steps that were done, a line each, and the change of the free space.
std::string resultText(const CleanupPlan& plan, const CleanupReport& report, const Wording& wording);

/// Each step with what became of it.
Json resultJson(const CleanupPlan& plan, const CleanupReport& report);

}  // namespace spacemint::ctl
