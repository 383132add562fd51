#pragma once

#include "core/cleanup/CleanupFailure.h"
#include "spacemintctl/CleanPlan.h"
#include "spacemintctl/Section.h"

#include <optional>
#include <string>

namespace spacemint::ctl {

/// The command of a step as it could be typed.
std::string commandText(const CleanStep& step);

/// Exactly what a plan will do: sizes, paths and commands.
std::string planText(const CleanPlan& plan, const Wording& wording);

Json planJson(const CleanPlan& plan);
Json stepJson(const CleanStep& step);

/// What became of a step: null for a step that was done.
Json failureJson(const std::optional<CleanupFailure>& failure);

}  // namespace spacemint::ctl
