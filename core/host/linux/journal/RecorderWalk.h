#pragma once

#include "core/host/linux/LinuxFolderListing.h"
#include "core/host/linux/journal/Recorder.h"

#include <memory>
#include <mutex>
#include <string_view>

namespace spacemint {

/// The walk of a scan, which sets the recorder up on its way. One that has been overtaken by another tells
/// nothing any more.
class Recorder::Walk final : public RecordingWalk, private FolderObserver {
 public:
  Walk(Recorder& recorder, std::uint64_t number, std::uint64_t eventID)
      : recorder_(recorder),
        number_(number),
        eventID_(eventID),
        listing_(observedFolderListing(*this)) {}

  ~Walk() override {
    if (finished_) return;
    recorder_.perform(
        [this] {
          {
            const std::lock_guard lock(recorder_.mapMutex_);
            if (isCurrent()) recorder_.tree_.lose(JournalAbsence::notRecording);
          }
          recorder_.takeLoss();
        },
        Clock::time_point::max());
  }

  FolderListing& listing() override { return *listing_; }
  std::uint64_t eventID() const override { return eventID_; }

  void finish() override {
    finished_ = true;
    recorder_.perform(
        [this] {
          const std::lock_guard lock(recorder_.mapMutex_);
          if (!isCurrent()) return;
          recorder_.tree_.expectWatches(false);
          recorder_.completeSetUp();
        },
        Clock::time_point::max());
  }

 private:
  bool isCurrent() const { return recorder_.walkNumber_ == number_; }

  Seen openedRoot(const FileHandle& folder) override {
    const std::lock_guard lock(recorder_.mapMutex_);
    if (!isCurrent() || !recorder_.tree_.begin(folder)) return {};
    recorder_.tree_.expectWatches(true);
    watcher_ = recorder_.queue_.watcher();
    return recorder_.tree_.rootSeen();
  }

  // Watched before the lock is taken, because that takes the longest.
  Seen opened(Seen parent, std::string_view name, const FileHandle& folder) override {
    const auto watched = watcher_->watch(folder);
    rewindFolder(folder);
    const std::lock_guard lock(recorder_.mapMutex_);
    return isCurrent() ? recorder_.tree_.adopt(parent, name, watched) : Seen{};
  }

  void couldNotOpen(Seen parent, std::string_view name) override {
    const std::lock_guard lock(recorder_.mapMutex_);
    if (isCurrent()) recorder_.tree_.adoptClosed(parent, name);
  }

  void couldNotList(Seen folder) override {
    const std::lock_guard lock(recorder_.mapMutex_);
    if (isCurrent()) recorder_.tree_.adoptUnlisted(folder);
  }

  Recorder& recorder_;
  std::uint64_t number_;
  std::uint64_t eventID_;
  std::unique_ptr<FolderListing> listing_;
  // Set when the root is opened, before any of its subfolders.
  std::shared_ptr<EventSource> watcher_;
  bool finished_ = false;
};

}  // namespace spacemint
