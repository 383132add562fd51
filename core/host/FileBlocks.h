#pragma once

#include "core/base/Bytes.h"
#include "core/host/Removal.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// A range of a disk, in bytes.
struct BlockRange {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
  /// Other files or snapshots use the range, too.
  bool isShared = false;

  auto operator<=>(const BlockRange&) const = default;
};

/// Where the content of a file is stored.
struct FileBlocks {
  /// The same for all names of the file.
  FileIdentity identity;
  /// In the order of the file. A compressed part is shown as long as its content, so such ranges overlap.
  std::vector<BlockRange> ranges;
  /// The bytes of the file that are stored anywhere, without holes.
  Bytes mapped = 0;
  bool isShared = false;
  bool isCompressed = false;
};

/// The blocks of the file at `path`, on a file system whose files can share blocks (Btrfs, XFS). Absent on
/// all others, for anything but a regular file, for a file that this user may not read, and for one in more
/// than 100,000 parts. Takes some 20 µs, and longer for a file in many parts. Any thread.
std::optional<FileBlocks> fileBlocks(const std::string& path);

/// How many bytes the ranges cover together; what several ranges cover counts once. Pure.
Bytes coveredBytes(std::vector<BlockRange> ranges);

}  // namespace spacemint
