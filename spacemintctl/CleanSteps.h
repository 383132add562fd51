#pragma once

#include "core/base/Error.h"
#include "spacemintctl/CleanPlans.h"

#include <expected>
#include <string>
#include <vector>

namespace spacemint::ctl {

// The steps that plans are put together from, each about what is on the disk now.

/// Fails where the guard refuses the path or nothing is there.
std::expected<CleanStep, Error> deleteStep(const std::string& path, const CleanContext& context);

/// Fails where no folder is there.
std::expected<CleanStep, Error> emptyStep(const std::string& path);

CleanStep commandStep(const std::string& program, std::vector<std::string> arguments,
                      const CleanContext& context);

/// Why the guard does not let the path be removed, as an error; nothing when it does.
std::expected<void, Error> admitted(const std::string& path, const CleanContext& context);

Error cleanError(std::string message);

}  // namespace spacemint::ctl
