#pragma once

#include "core/host/EventRecorder.h"
#include "core/scan/CallThread.h"

#include <memory>
#include <mutex>
#include <string>

namespace spacemint {

/// The journal of a process that scans repeatedly. The first full scan of a folder starts a recorder in this
/// process; only the folder of the newest such scan is recorded. Queries about folders that another process
/// records go to that process. Any thread.
class ProcessJournal final : public EventJournal {
 public:
  /// The root and `crawlsAtOnce` of the options are not used.
  explicit ProcessJournal(EventRecorder::Options options = {});

  std::unique_ptr<RecordingCrawl> beginCrawl(const std::string& root) override;
  std::uint64_t currentEventID(const JournalQuery& query) override;
  std::expected<FolderChanges, JournalError> changes(const JournalQuery& query) override;
  std::expected<MeasuredChanges, JournalError> measuredChanges(const JournalQuery& query) override;

 private:
  void start(const std::string& root);
  /// The recorder of this process if it records `root`, otherwise null.
  std::shared_ptr<EventRecorder> recorderOf(const std::string& root) const;

  EventRecorder::Options options_;
  std::unique_ptr<EventJournal> others_;
  /// Scans run at low priority. A recorder started from a scan's thread would inherit that priority and lose
  /// events.
  CallThread starter_;
  mutable std::mutex mutex_;
  std::string root_;
  std::shared_ptr<EventRecorder> recorder_;
};

}  // namespace spacemint
