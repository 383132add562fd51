#pragma once

#include <cstdint>
#include <string>

namespace spacemint {

/// What tells one version of a file from another without reading it. All zero where there is no file to see.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::int64_t size = 0;
  std::int64_t modifiedSeconds = 0;
  std::int64_t modifiedNanoseconds = 0;

  bool operator==(const FileStamp&) const = default;
};

/// The stamp of the file at `path`; of what it names where it is a link.
FileStamp fileStamp(const std::string& path);

}  // namespace spacemint
