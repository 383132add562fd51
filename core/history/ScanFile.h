#pragma once

#include "core/history/NcduFormat.h"

#include <cstddef>
#include <expected>
#include <string>
#include <string_view>

namespace spacemint {

/// Files with a scan of another computer or another time: an export (`NcduFormat`), or a scan as the history
/// stores it (`SnapshotCodec`). Such a scan is only looked at: its paths are not those of here and now.
/// Throws no exceptions; any thread.
namespace ScanFile {

/// The largest text that `read` takes, in bytes.
inline constexpr std::size_t largest = 4'000'000'000;

/// Reads either format. Fails if the text is neither; the message says why.
std::expected<NcduFormat::Imported, Error> decode(std::string_view text);

/// Reads a regular file of at most `limit` bytes. Fails with the error of `readFile` or `decode`. Blocks for
/// the disk, and takes about four times the file's size of memory.
std::expected<NcduFormat::Imported, Error> read(const std::string& path, std::size_t limit = largest);

}  // namespace ScanFile

}  // namespace spacemint
