#pragma once

#include "core/base/Bytes.h"

#include <optional>
#include <string>

namespace spacemint {

/// What the file at `path` takes on the disk, shared evenly among its names, as a scan counts it; a link's
/// own. Absent when it cannot be looked at.
std::optional<Bytes> allocatedSize(const std::string& path);

}  // namespace spacemint
