#pragma once

#include "core/analysis/GrowthWatch.h"
#include "core/host/EventJournal.h"

#include <chrono>
#include <expected>
#include <functional>
#include <set>
#include <string>

namespace spacemint {

/// Feeds a `GrowthWatch`: asks a recorder which folders changed since the last refresh, and lists these.
/// While the free space stays the same, a refresh asks nobody. One thread at a time.
class GrowthReader {
 public:
  using Time = GrowthWindow::Time;

  struct Parts {
    EventJournal& journal;
    /// The recorded folder, spelled as the recorder was started with it.
    std::string root;
    /// The free space of the volume in bytes; absent if it cannot be read.
    std::function<std::optional<Bytes>()> freeBytes;
    /// The longest wait for the recorder.
    std::chrono::milliseconds timeout{2'000};
  };

  explicit GrowthReader(Parts parts) : parts_(std::move(parts)), watch_(parts_.root) {}

  /// Looks at what changed. Fails with the reason why no recorder answers; growth before the first success is
  /// not known. `now` never goes backwards; `date` is the same instant on the wall clock. Blocks for the
  /// recorder and the disk.
  std::expected<void, JournalError> refresh(Time now, Date date);

  const GrowthWatch& watch() const { return watch_; }

 private:
  struct Due {
    Time at;
    // The wall clock of the last look, or of the refresh before the first one.
    Date lookedBefore;
    // Includes all folders below.
    bool isTree = false;
  };

  std::expected<void, JournalError> noteChanges(Date date);
  void lookAtDue(Time now, Date date);
  void look(const std::string& top, const Due& due, Time now);

  Parts parts_;
  GrowthWatch watch_;
  std::uint64_t since_ = 0;
  Date dateBefore_;
  std::optional<Bytes> freeBefore_;
  // The folders to look at, by path.
  std::map<std::string, Due> due_;
  // When a folder whose listing takes long may be listed again.
  std::map<std::string, Time> restUntil_;
  // Folders of which events may be missing: files that are written through a mapping report nothing until
  // they are closed.
  std::map<std::string, Time> hotUntil_;
  // When folders without new events may be looked at again.
  Time quietRestUntil_ = Time::min();
};

}  // namespace spacemint
