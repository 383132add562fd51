#include "core/host/EventRecorder.h"
#include "core/host/UserFolders.h"
#include "core/host/linux/journal/JournalServer.h"
#include "core/host/linux/journal/MeetingPlace.h"
#include "core/host/linux/journal/Recorder.h"
#include "core/host/linux/journal/SessionCounter.h"

#include <optional>

namespace spacemint {

namespace {

// A recorder that other processes find, and the only one of its root.
class SharedRecorder final : public EventRecorder {
 public:
  SharedRecorder(MeetingPlace place, FileLock lock, std::unique_ptr<Recorder> recorder)
      : place_(std::move(place)),
        lock_(std::move(lock)),
        recorder_(std::move(recorder)) {}

  ~SharedRecorder() override { stop(); }

  void stop() override {
    recorder_->stop();
    server_.reset();
    place_.leave();
  }

  std::expected<void, Error> serve() {
    auto listener = place_.listen();
    if (!listener) return std::unexpected(std::move(listener).error());
    auto server = JournalServer::start({.journal = *recorder_, .listener = std::move(*listener)});
    if (!server) return std::unexpected(std::move(server).error());
    server_ = std::move(*server);
    return {};
  }

  std::uint64_t currentEventID(const std::string& root) override { return recorder_->currentEventID(root); }
  std::expected<FolderChanges, JournalAbsence> changes(const Question& question) override {
    return recorder_->changes(question);
  }
  std::unique_ptr<RecordingWalk> beginWalk() override { return recorder_->beginWalk(); }
  bool waitUntilRecording(std::chrono::milliseconds timeout) override {
    return recorder_->waitUntilRecording(timeout);
  }
  Status status() override { return recorder_->status(); }

 private:
  MeetingPlace place_;
  FileLock lock_;  // until the socket is gone
  std::unique_ptr<Recorder> recorder_;
  std::unique_ptr<JournalServer> server_;
};

}  // namespace

std::expected<std::unique_ptr<EventRecorder>, Error> startRecording(EventRecorder::Options options) {
  auto place = MeetingPlace::forRoot(options.root, options.meetingFolder);
  if (!place) return std::unexpected(std::move(place).error());
  auto lock = place->lock();
  if (!lock) return std::unexpected(std::move(lock).error());
  const std::string stateFolder =
      options.stateFolder.empty() ? UserFolders::state() + "/spacemint" : options.stateFolder;
  const auto first = SessionCounter::begin(stateFolder, SessionCounter::drawRandomly);
  if (!first) return std::unexpected(first.error());
  auto recorder = Recorder::start({.root = std::move(options.root),
                                   .firstEventID = *first,
                                   .watchLimit = options.watchLimit,
                                   .walksAtOnce = options.walksAtOnce});
  if (!recorder) return std::unexpected(std::move(recorder).error());
  auto shared = std::make_unique<SharedRecorder>(std::move(*place), std::move(*lock), std::move(*recorder));
  if (auto serving = shared->serve(); !serving) return std::unexpected(std::move(serving).error());
  return shared;
}

}  // namespace spacemint
