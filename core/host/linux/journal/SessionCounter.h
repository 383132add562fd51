#pragma once

#include "core/base/Error.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <string>

namespace spacemint {

/// Counts the sessions of a user's recorders in the file "journal-session" of a folder, so that ids grow for
/// ever. docs/formats/journal.md describes the file.
namespace SessionCounter {

/// Of an event id: the session from the highest bit on, then bits that are drawn, then `EventClock::bits`.
inline constexpr unsigned sessionBits = 20;
inline constexpr unsigned drawnBits = 24;

/// The first event id of a new session, which is on the disk as begun before this returns. The count starts
/// at 1 where the file is missing, and where it is damaged, which is then set aside. A file from a backup
/// makes sessions be counted twice: they differ in what `draw` gives, which must be random. Fails when the
/// file cannot be written, and when no sessions are left.
std::expected<std::uint64_t, Error> begin(const std::string& folder,
                                          const std::function<std::uint64_t()>& draw);

/// Random bits of the system.
std::uint64_t drawRandomly();

}  // namespace SessionCounter

}  // namespace spacemint
