#pragma once

#include "core/base/Error.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <string>

namespace spacemint {

/// Counts the sessions of a user's recorders in the file "journal-session" of a folder, so that event ids
/// only grow (docs/formats/journal.md). Any thread and process; a file lock keeps them apart.
namespace SessionCounter {

/// The parts of an event id, from the highest bit: the session, random bits, then `EventClock::bits`.
inline constexpr unsigned sessionBits = 20;
inline constexpr unsigned randomBits = 24;

/// The first event id of a new session. The new session number is on disk before this returns. The count
/// starts at 1 when the file is missing or damaged; a damaged file is renamed. With a file restored from a
/// backup, a session number is used twice; the two sessions then differ in the random bits from `draw`. Fails
/// when the file cannot be written, and with EOVERFLOW when no session numbers are left.
std::expected<std::uint64_t, Error> begin(const std::string& folder,
                                          const std::function<std::uint64_t()>& draw);

/// Random bits from the system.
std::uint64_t drawRandomly();

}  // namespace SessionCounter

}  // namespace spacemint
