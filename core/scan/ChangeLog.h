#pragma once

#include "core/host/EventJournal.h"
#include "core/scan/DiskScanner.h"
#include "core/tree/Snapshot.h"

#include <expected>
#include <string>
#include <unordered_set>

namespace spacemint {

/// What changed since an earlier scan, and so what of it a new scan may reuse. Any thread.
class ChangeLog {
 public:
  /// Folders by their full paths as a tree has them, without "/" at the end.
  struct Changes {
    /// Their own entries changed; nothing is said of their subfolders.
    std::unordered_set<std::string> directories;
    /// Anything below them may have changed.
    std::unordered_set<std::string> trees;

    bool operator==(const Changes&) const = default;
  };

  struct Question {
    /// The event id that the earlier scan carries.
    std::uint64_t since = 0;
    /// The root of the scan.
    std::string under;
    std::chrono::milliseconds timeout{0};
  };

  /// The journal must outlive the log and what is asked of it.
  explicit ChangeLog(EventJournal& journal) : journal_(journal) {}

  /// The id for a scan of `root` that begins now; 0 while nothing is recorded.
  std::uint64_t currentEventID(const std::string& root) const { return journal_.currentEventID(root); }

  /// Every folder that changed since, or why that cannot be told. Blocks for about `timeout` at the most.
  std::expected<Changes, JournalAbsence> changes(const Question& question) const;

  /// A scan's `reuse`: a folder in and below which nothing changed is answered with what `previous` has of
  /// it. The function holds copies of both.
  static DiskScanner::Reuse reuse(Snapshot previous, Changes changes);

 private:
  EventJournal& journal_;
};

}  // namespace spacemint
