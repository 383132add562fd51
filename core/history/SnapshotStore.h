#pragma once

#include "core/base/Error.h"
#include "core/tree/Snapshot.h"

#include <expected>
#include <string>
#include <vector>

namespace spacemint {

/// A folder with one file per scan, named after the second in which the scan finished. A value without state
/// besides its folder; every call reads the folder afresh. Any thread; saves are atomic, so readers see
/// complete files only.
///
/// A scan dated after now (the clock was set back) counts as a scan of an unknown, earlier time.
struct SnapshotStore {
  /// One file of the history, identified by its path.
  struct Entry {
    /// The time that the file name gives.
    Date date = {};
    std::string path;

    const std::string& id() const { return path; }
    bool operator==(const Entry&) const = default;
  };

  /// Which scans `prune` keeps: the `alwaysKept` newest, and the newest of each calendar day back to `days`
  /// days before `now`. Days are those of `timeZone`; with an unknown zone the limit is `now` itself.
  struct Retention {
    int days = 14;
    Date now = {};
    std::string timeZone;
    std::size_t alwaysKept = 2;
  };

  std::string directory;

  /// The user's history: the scans of the home folder and of the whole disk, on which the application lives.
  static SnapshotStore standard();

  /// Where scans of `root` are kept: in `standard()` for the home folder and the whole disk, else in a folder
  /// of their own, so that they never push a scan of another root out.
  static SnapshotStore ofRoot(const std::string& root);

  /// `standard()` and the store of every other root that has scans.
  static std::vector<SnapshotStore> all();

  /// Newest first, scans dated after `now` last; empty for a folder that is missing or cannot be read. A file
  /// whose name is not a number followed by ".json" does not exist for the store.
  std::vector<Entry> entries(Date now = Date::max()) const;

  /// The order of `entries`.
  static void sortNewestFirst(std::vector<Entry>& entries, Date now);

  /// Fails with the error of reading or of `SnapshotCodec::decode`.
  std::expected<Snapshot, Error> load(const Entry& entry) const;

  /// Publishes the snapshot under its date in whole seconds, in the place of an earlier one of that second.
  /// Creates the folder where it is missing.
  std::expected<Entry, Error> save(const Snapshot& snapshot) const;

  /// Deletes what falls outside the retention; a file that cannot be deleted stays. Of the scans dated after
  /// `Retention::now` the newest of each day stays.
  void prune(const Retention& retention) const;

  /// Prunes the store of every root besides the home folder and the whole disk. Where the newest scan of a root
  /// is older than `Retention::days`, all scans of that root are deleted.
  static void pruneOthers(Retention retention);
};

}  // namespace spacemint
