#pragma once

#include "core/base/Date.h"

#include <cstdint>
#include <optional>
#include <string>

namespace spacemint {

/// What tells one version of a file from another without reading it. All zero where there is no file to see.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::int64_t size = 0;
  std::int64_t modifiedSeconds = 0;
  std::int64_t modifiedNanoseconds = 0;

  /// When the contents were last changed, in whole seconds; absent where there is no file to see.
  std::optional<Date> modified() const {
    return inode == 0 ? std::nullopt : std::optional{dateFromUnixSeconds(modifiedSeconds)};
  }

  bool operator==(const FileStamp&) const = default;
};

/// The stamp of the file at `path`; of what it names where it is a link.
FileStamp fileStamp(const std::string& path);

}  // namespace spacemint
