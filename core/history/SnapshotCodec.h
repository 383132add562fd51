#pragma once

#include "core/base/Error.h"
#include "core/tree/Snapshot.h"

#include <expected>
#include <string>
#include <string_view>

namespace spacemint {

/// The stored form of a snapshot: one compact JSON document, described in docs/formats/history.md. Pure
/// functions; any thread; no exception leaves them.
namespace SnapshotCodec {

/// Domain of the errors; the code is a `Fault`.
inline constexpr std::string_view domain = "snapshot";

enum class Fault : int {
  notJson = 1,
  missingKey,
  duplicateKey,
  wrongType,
  outOfRange,
  tooDeep,
  outOfMemory,
};

/// Dates at snapshot level are stored as seconds after 2001-01-01 00:00:00 UTC.
inline constexpr std::chrono::seconds epoch{978'307'200};

/// Fails for a `duration` that is not finite and for a tree deeper than `Node::maximumDepth`. Bytes of a name
/// that are not UTF-8 become U+FFFD; `modified` is rounded to whole seconds, halves away from zero.
std::expected<std::string, Error> encode(const Snapshot& snapshot);

/// All or nothing: a missing key, a wrong type, a number outside its field's range, a key given twice, too
/// deep a nesting or bytes that are not UTF-8 fail the document, with a message that says what and where.
/// Unknown keys are skipped, and so is a byte order mark in front.
std::expected<Snapshot, Error> decode(std::string_view document);

}  // namespace SnapshotCodec

}  // namespace spacemint
