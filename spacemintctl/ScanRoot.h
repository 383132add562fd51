#pragma once

#include "core/base/Error.h"

#include <expected>
#include <string>

namespace spacemint::ctl {

/// The one spelling of a root under which its scans are kept and its changes recorded: absolute, without a
/// "/" at the end. The home folder for an empty path. Fails for a relative path that leads nowhere.
std::expected<std::string, Error> scanRoot(const std::string& path);

}  // namespace spacemint::ctl
