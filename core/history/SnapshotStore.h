#pragma once

#include "core/base/Error.h"
#include "core/tree/Snapshot.h"

#include <expected>
#include <string>
#include <vector>

namespace spacemint {

/// The scan history on disk: a folder with one file per scan, named after the second in which it finished.
/// The newest file is the current scan. A value without state besides its folder; every call reads the folder
/// afresh. Any thread; saves are atomic, so readers see complete files only.
struct SnapshotStore {
  /// One file of the history, identified by its path.
  struct Entry {
    /// What the file name says.
    Date date = {};
    std::string path;

    const std::string& id() const { return path; }
    bool operator==(const Entry&) const = default;
  };

  /// What `prune` leaves besides the two newest scans: the newest of each calendar day back to `days` days
  /// before `now`, days being those of `timeZone`. A zone that is not known makes `now` itself the limit.
  struct Retention {
    int days = 14;
    Date now = {};
    std::string timeZone;
  };

  std::string directory;

  /// The user's own history.
  static SnapshotStore standard();

  /// Newest first; empty for a folder that is missing or cannot be read. A file whose name is not a number
  /// followed by ".json" does not exist for the store.
  std::vector<Entry> entries() const;

  /// Fails with the error of reading or of `SnapshotCodec::decode`.
  std::expected<Snapshot, Error> load(const Entry& entry) const;

  /// Publishes the snapshot under its date in whole seconds, in the place of an earlier one of that second.
  /// Creates the folder where it is missing.
  std::expected<Entry, Error> save(const Snapshot& snapshot) const;

  /// Deletes what falls outside the retention; a file that cannot be deleted stays.
  void prune(const Retention& retention) const;
};

}  // namespace spacemint
