#pragma once

#include "core/base/Error.h"
#include "core/tree/Snapshot.h"

#include <expected>
#include <string>
#include <vector>

namespace spacemint {

/// A folder of stored scans: one file per scan, named after the second in which the scan finished. The object
/// holds only the folder's path; every call reads the folder again and blocks for the disk. Any thread; saves
/// are atomic, so readers see only complete files.
///
/// A scan dated in the future (because the clock was set back) counts as an earlier scan with an unknown
/// date.
struct SnapshotStore {
  /// One file of the history, identified by its path.
  struct Entry {
    /// The date in the file's name.
    Date date = {};
    std::string path;

    const std::string& id() const { return path; }
    bool operator==(const Entry&) const = default;
  };

  /// Which scans `prune` keeps: the `alwaysKept` newest scans, and the newest scan of each calendar day from
  /// `days` days before `now` on. Days are calendar days in `timeZone`; with an unknown zone only the
  /// `alwaysKept` newest and scans dated after `now` remain.
  struct Retention {
    int days = 14;
    Date now = {};
    std::string timeZone;
    std::size_t alwaysKept = 2;
  };

  std::string directory;

  /// The user's history, which the application shows: scans of the home folder and of the whole disk.
  static SnapshotStore standard();

  /// The store for scans of `root`: `standard()` for the home folder and the whole disk, otherwise a separate
  /// folder for this root, so that pruning never removes scans of other roots.
  static SnapshotStore ofRoot(const std::string& root);

  /// `standard()`, and the stores of all other roots that have scans.
  static std::vector<SnapshotStore> all();

  /// The stored scans, newest first, with scans dated after `now` last. Empty if the folder is missing or
  /// cannot be read. Ignores files whose name is not a number followed by ".json".
  std::vector<Entry> entries(Date now = Date::max()) const;

  /// Sorts in the order of `entries`.
  static void sortNewestFirst(std::vector<Entry>& entries, Date now);

  /// Reads a stored scan. Fails with the error of reading the file or of `SnapshotCodec::decode`.
  std::expected<Snapshot, Error> load(const Entry& entry) const;

  /// Stores the snapshot under its date in whole seconds; replaces a scan of the same second. Creates the
  /// folder if it is missing. Fails with the error of encoding or writing.
  std::expected<Entry, Error> save(const Snapshot& snapshot) const;

  /// Deletes the scans that `retention` does not keep; ignores files that cannot be deleted. Of the scans
  /// dated after `Retention::now`, keeps the newest of each day.
  void prune(const Retention& retention) const;

  /// Prunes the stores of all roots other than the home folder and the whole disk. If the newest scan of a
  /// root is older than `Retention::days`, deletes all scans of that root.
  static void pruneOthers(Retention retention);
};

}  // namespace spacemint
