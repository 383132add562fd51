#pragma once

#include "core/base/Date.h"

#include <cstdint>
#include <optional>
#include <string>

namespace spacemint {

/// Identifies a version of a file without reading its contents. All members are 0 if the file does not exist
/// or cannot be accessed.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::int64_t size = 0;
  std::int64_t modifiedSeconds = 0;
  std::int64_t modifiedNanoseconds = 0;

  /// When the contents last changed, in whole seconds; absent if all members are 0.
  std::optional<Date> modified() const {
    return inode == 0 ? std::nullopt : std::optional{dateFromUnixSeconds(modifiedSeconds)};
  }

  bool operator==(const FileStamp&) const = default;
};

/// The stamp of the file at `path`. Follows symbolic links. Any thread.
FileStamp fileStamp(const std::string& path);

/// True if there is something at `path`, also a broken symbolic link, or if that cannot be found out. Any
/// thread.
bool mayExist(const std::string& path);

}  // namespace spacemint
