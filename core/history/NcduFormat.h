#pragma once

#include "core/base/Error.h"
#include "core/tree/Snapshot.h"

#include <expected>
#include <string>
#include <string_view>

namespace spacemint {

/// The exchange format of disk usage tools: the JSON export of ncdu, version 1. docs/formats/exchange.md says
/// what of a scan it holds. Pure functions that throw no exceptions; any thread.
namespace NcduFormat {

/// The domain of all errors of this namespace.
inline constexpr std::string_view domain = "import";

struct Imported {
  /// Its date is that of the export; 1970 if the file has none. Its smallest stored size is that of the
  /// export, or 0.
  Snapshot snapshot;
  /// The computer that was scanned; empty if the file does not say it.
  std::string host;
  /// The program that wrote the file; may be empty.
  std::string program;
};

/// Items too small to be stored become one item for each folder. Bytes of a name that are not UTF-8 become
/// U+FFFD.
std::string encode(const Snapshot& snapshot, std::string_view host, std::string_view programVersion);

/// Reads an export of this or another program. A file with several names counts once, where it comes first.
/// Fails if the text is not such an export; the message says why.
std::expected<Imported, Error> decode(std::string_view text);

}  // namespace NcduFormat

}  // namespace spacemint
