#pragma once

#include "core/base/Error.h"

#include <expected>
#include <string>

namespace spacemint::ctl {

/// The path of a scan's root in the form under which scans are stored and changes are recorded: absolute and
/// without a trailing "/". An empty `path` means the home folder. Fails if a relative path does not exist.
std::expected<std::string, Error> scanRoot(const std::string& path);

}  // namespace spacemint::ctl
