#pragma once

#include "core/base/Error.h"

#include <chrono>
#include <expected>
#include <string>
#include <string_view>

namespace spacemint {

/// Creates the folder `path` and all missing folders above it with mode 0700. Does not change existing
/// folders. Any thread.
std::expected<void, Error> createPrivateFolders(const std::string& path);

/// Replaces the file at `path` with `contents` (mode 0600), atomically and durably: writes a temporary file
/// in the same folder, flushes the file, renames it to `path` and flushes the folder. On failure the old file
/// is unchanged and the temporary file is removed. Several processes may write at the same time; the last one
/// wins. Follows a symbolic link at `path`. Also removes temporary files in the folder that are older than
/// `leftOverAge`. Blocks for the disk; any thread.
std::expected<void, Error> writeFileAtomically(const std::string& path, std::string_view contents);
inline constexpr std::chrono::hours leftOverAge{1};

/// Overwrites a part of an existing file with one system call, neither atomically nor durably. Fails with
/// ENOENT if the file is missing. Any thread.
std::expected<void, Error> overwritePart(const std::string& path, std::size_t offset, std::string_view part);

/// Reads the whole regular file at `path`. Fails with EFBIG if the file is larger than `limit` bytes, with
/// EISDIR for a folder and with EINVAL for a pipe or device, which it does not wait for. Any thread.
std::expected<std::string, Error> readFile(const std::string& path, std::size_t limit);

}  // namespace spacemint
