#pragma once

#include "core/host/EventRecorder.h"
#include "core/scan/CallThread.h"

#include <memory>
#include <mutex>
#include <string>

namespace spacemint {

/// The journal of a process that scans again and again, and records between its scans what changes. Any
/// thread.
class ScanJournal : public EventJournal {
 public:
  /// For a scan of `root` that has to walk everything: the walk from which the recording starts. From here on
  /// `root` is recorded, and nothing else. Null where it is recorded already, here or by another process, and
  /// where it cannot be.
  virtual std::unique_ptr<RecordingWalk> beginWalk(const std::string& root) = 0;
};

/// Records in this process, and asks others where one of them does.
class OwnScanJournal final : public ScanJournal {
 public:
  /// `options` but for their root and who walks.
  explicit OwnScanJournal(EventRecorder::Options options = {});

  std::unique_ptr<RecordingWalk> beginWalk(const std::string& root) override;
  std::uint64_t currentEventID(const std::string& root) override;
  std::expected<FolderChanges, JournalAbsence> changes(const Question& question) override;

 private:
  using SharedRecorder = std::shared_ptr<EventRecorder>;

  /// The recorder of this process for `root`, or null.
  SharedRecorder recorderOf(const std::string& root) const;

  EventRecorder::Options options_;
  std::unique_ptr<EventJournal> others_;
  /// A scan runs when nobody else does, and a recorder that did so too would lose events.
  CallThread starter_;
  mutable std::mutex mutex_;
  std::string root_;
  SharedRecorder recorder_;
};

}  // namespace spacemint
