#pragma once

#include "core/base/Bytes.h"

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// A running program.
struct RunningProgram {
  int pid = 0;
  /// The short name that the kernel keeps, of at most 15 bytes. Any bytes: each program can set its own.
  std::string name;

  auto operator<=>(const RunningProgram&) const = default;
};

/// A file without a name, which takes space until the last program that uses it closes it.
struct DeletedFile {
  /// The allocated bytes; absent if the file is only mapped into memory and this user may not ask for its
  /// size.
  std::optional<Bytes> size;
  /// The file's volume: the device number of its mounts in the mount table.
  std::uint64_t pool = 0;
  /// The path that the file had in the view of its program.
  std::string path;
  /// The programs that use the file, in the order of their numbers; never empty.
  std::vector<RunningProgram> programs;

  bool operator==(const DeletedFile&) const = default;
};

struct DeletedFiles {
  std::vector<DeletedFile> files;
  /// The programs that were found, and those among them whose files this user may not see.
  std::int64_t programs = 0;
  std::int64_t refused = 0;
};

/// The deleted files that running programs hold open or have mapped into memory, each once. Files in memory
/// only (memfd, a shared segment) belong to no disk. Programs that end meanwhile are left
/// out.
///
/// Takes 10 to 50 ms with some hundred programs, and longer with many thousand open files: call it on a
/// thread that nobody waits for. Any thread.
DeletedFiles deletedFilesInUse();

}  // namespace spacemint
