#pragma once

#include "core/base/Error.h"
#include "core/cleanup/CleanupFailure.h"
#include "spacemintctl/CleanPlans.h"

#include <expected>
#include <optional>
#include <string>
#include <vector>

namespace spacemint::ctl {

// The steps that plans are put together from, each about what is on the disk now.

/// Fails where the guard refuses the path or nothing is there.
std::expected<CleanStep, Error> deleteStep(const std::string& path, const CleanContext& context);

/// Empties a cache or a part of the Trash, as `kind` says. Fails where no folder is there.
std::expected<CleanStep, Error> emptyStep(CleanStep::Kind kind, const std::string& path);

CleanStep commandStep(const std::string& program, std::vector<std::string> arguments,
                      const CleanContext& context);

/// Fails with the message of a refusal.
std::expected<void, Error> admitted(const std::optional<CleanupFailure>& refusal);

Error cleanError(std::string message);

}  // namespace spacemint::ctl
