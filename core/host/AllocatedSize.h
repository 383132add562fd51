#pragma once

#include "core/base/Bytes.h"

#include <optional>
#include <string>

namespace spacemint {

/// The bytes that the file at `path` occupies on the disk, divided by the number of its hard links, as a scan
/// counts them. Does not follow a symbolic link. Absent if the file cannot be read by lstat(). Any thread.
std::optional<Bytes> allocatedSize(const std::string& path);

}  // namespace spacemint
