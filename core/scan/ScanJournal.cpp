#include "core/scan/ScanJournal.h"

namespace spacemint {

namespace {

// A walk that keeps its recorder, for another scan may have brought another one by the time it ends.
class HeldWalk final : public RecordingWalk {
 public:
  explicit HeldWalk(std::shared_ptr<EventRecorder> recorder)
      : recorder_(std::move(recorder)),
        walk_(recorder_->beginWalk()) {}

  FolderListing& listing() override { return walk_->listing(); }
  std::uint64_t eventID() const override { return walk_->eventID(); }
  void finish() override { walk_->finish(); }

 private:
  std::shared_ptr<EventRecorder> recorder_;
  std::unique_ptr<RecordingWalk> walk_;  // ends first
};

}  // namespace

OwnScanJournal::OwnScanJournal(EventRecorder::Options options)
    : options_(std::move(options)),
      others_(hostEventJournal()) {
  options_.walksAtOnce = false;
}

std::unique_ptr<RecordingWalk> OwnScanJournal::beginWalk(const std::string& root) {
  SharedRecorder recorder;
  {
    const std::lock_guard hold(mutex_);
    if (root_ != root || !recorder_) {
      recorder_.reset();
      root_ = root;
      options_.root = root;
      starter_.call([this] {
        auto started = startRecording(options_);
        if (started) recorder_ = std::move(*started);
      });
    }
    recorder = recorder_;
  }
  if (!recorder || !recorder->status().absence) return nullptr;
  return std::make_unique<HeldWalk>(std::move(recorder));
}

std::uint64_t OwnScanJournal::currentEventID(const std::string& root) {
  const auto recorder = recorderOf(root);
  return recorder ? recorder->currentEventID(root) : others_->currentEventID(root);
}

std::expected<FolderChanges, JournalAbsence> OwnScanJournal::changes(const Question& question) {
  const auto recorder = recorderOf(question.root);
  return recorder ? recorder->changes(question) : others_->changes(question);
}

OwnScanJournal::SharedRecorder OwnScanJournal::recorderOf(const std::string& root) const {
  const std::lock_guard hold(mutex_);
  return root_ == root ? recorder_ : nullptr;
}

}  // namespace spacemint
