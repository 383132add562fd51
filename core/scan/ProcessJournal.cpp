#include "core/scan/ProcessJournal.h"

#include "core/base/Log.h"

namespace spacemint {

ProcessJournal::ProcessJournal(EventRecorder::Options options)
    : options_(std::move(options)),
      others_(hostEventJournal()) {
  options_.crawlsAtOnce = false;
}

std::unique_ptr<RecordingCrawl> ProcessJournal::beginCrawl(const std::string& root) {
  std::shared_ptr<EventRecorder> recorder;
  {
    const std::lock_guard hold(mutex_);
    if (root_ != root || !recorder_) start(root);
    recorder = recorder_;
  }
  return recorder ? recorder->beginCrawl(root) : nullptr;
}

// With `mutex_` locked. If the recorder cannot start, there is none.
void ProcessJournal::start(const std::string& root) {
  recorder_.reset();
  root_ = root;
  options_.root = root;
  starter_.call([this] {
    auto started = EventRecorder::start(options_);
    if (started) {
      recorder_ = std::move(*started);
    } else {
      log(LogLevel::info, "this process does not record " + root_ + ": " + started.error().message);
    }
  });
}

std::uint64_t ProcessJournal::currentEventID(const JournalQuery& query) {
  const auto recorder = recorderOf(query.root);
  return recorder ? recorder->currentEventID(query) : others_->currentEventID(query);
}

std::expected<FolderChanges, JournalError> ProcessJournal::changes(const JournalQuery& query) {
  const auto recorder = recorderOf(query.root);
  return recorder ? recorder->changes(query) : others_->changes(query);
}

std::expected<MeasuredChanges, JournalError> ProcessJournal::measuredChanges(const JournalQuery& query) {
  const auto recorder = recorderOf(query.root);
  return recorder ? recorder->measuredChanges(query) : others_->measuredChanges(query);
}

std::shared_ptr<EventRecorder> ProcessJournal::recorderOf(const std::string& root) const {
  const std::lock_guard hold(mutex_);
  return root_ == root ? recorder_ : nullptr;
}

}  // namespace spacemint
