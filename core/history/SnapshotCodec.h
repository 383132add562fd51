#pragma once

#include "core/base/Error.h"
#include "core/tree/Snapshot.h"

#include <expected>
#include <string>
#include <string_view>

namespace spacemint {

/// Converts snapshots to and from their stored form: a compact JSON document, described in
/// docs/formats/history.md. Pure functions that throw no exceptions; any thread.
namespace SnapshotCodec {

/// The domain of all errors of this namespace; `code` is a `Fault`.
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

/// The snapshot's own dates are stored as seconds after 2001-01-01 00:00:00 UTC.
inline constexpr std::chrono::seconds epoch{978'307'200};

/// Fails if `duration` is not finite or the tree is deeper than `Node::maximumDepth`. Bytes of a name that
/// are not UTF-8 become U+FFFD; `modified` is rounded to whole seconds, halves away from zero.
std::expected<std::string, Error> encode(const Snapshot& snapshot);

/// Fails for a missing or duplicate key, a wrong type, a number outside the field's range, nesting that is
/// too deep, or bytes that are not UTF-8; the message names the fault and its place. Skips unknown keys and a
/// leading byte order mark.
std::expected<Snapshot, Error> decode(std::string_view document);

}  // namespace SnapshotCodec

}  // namespace spacemint
