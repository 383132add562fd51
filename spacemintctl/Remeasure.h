#pragma once

#include "core/base/Error.h"

#include <expected>
#include <string>
#include <vector>

namespace spacemint::ctl {

/// Measures these paths again and puts what is there now into the newest stored scan; nothing where there is
/// none or it knows none of them. Fails with the error of saving it.
std::expected<void, Error> remeasureInNewestScan(const std::vector<std::string>& paths);

}  // namespace spacemint::ctl
