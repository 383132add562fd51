#pragma once

#include "core/base/Error.h"

#include <chrono>
#include <expected>
#include <string>
#include <string_view>

namespace spacemint {

/// Creates `path` with any missing folders above it, each open to its owner only (0700). A folder that is
/// there already is left as it is.
std::expected<void, Error> createPrivateFolders(const std::string& path);

/// Publishes `contents` as the file at `path` (0600), all or nothing and durably: a temporary file in the
/// same folder is written and flushed to the disk, moved over the target, and the folder flushed. On failure
/// the earlier file is untouched and the temporary one gone. Several processes may publish at once; the last
/// wins. A symbolic link at `path` is followed. Left-overs of writers that died more than `leftOverAge` ago
/// are removed from the folder.
std::expected<void, Error> writeFileAtomically(const std::string& path, std::string_view contents);
inline constexpr std::chrono::hours leftOverAge{1};

/// The whole regular file at `path`; fails with EFBIG when it is larger than `limit` bytes. Never blocks.
std::expected<std::string, Error> readFile(const std::string& path, std::size_t limit);

}  // namespace spacemint
