#pragma once

#include "core/cleanup/Cleanup.h"
#include "spacemintctl/Section.h"

#include <string>
#include <vector>

namespace spacemint::ctl {

/// The text that shows a plan: sizes, paths and exact commands. `leftOut` contains a line for each item that
/// the plan leaves out, with the reason.
std::string planText(const CleanupPlan& plan, const std::vector<std::string>& leftOut,
                     const Wording& wording);

Json planJson(const CleanupPlan& plan);

/// A line for each step that was done, and the change of the free space.
std::string resultText(const CleanupPlan& plan, const CleanupReport& report, const Wording& wording);

/// Each step with its result.
Json resultJson(const CleanupPlan& plan, const CleanupReport& report);

}  // namespace spacemint::ctl
