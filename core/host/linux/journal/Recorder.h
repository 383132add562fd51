#pragma once

#include "core/host/EventRecorder.h"
#include "core/host/linux/journal/WatchedTree.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace spacemint {

/// A recorder of one process: a thread that owns the map of folders, fetches events in bursts and answers
/// when everything that was queued at the question has been handled. It sleeps while nothing happens.
class Recorder final : public EventRecorder {
 public:
  struct Parts {
    std::string root;
    /// The first id of the session, which gives out `EventClock::count` of them.
    std::uint64_t firstEventID = 0;
    std::size_t watchLimit = 0;
    bool walksAtOnce = true;
    /// After events were lost, how long until it begins anew; doubled each time.
    std::chrono::seconds restartTime{5};
    RecorderRules rules = {};
  };

  /// How long events may gather before they are fetched, in a burst and in a storm of them.
  static constexpr std::chrono::milliseconds burstTime{10};
  static constexpr std::chrono::milliseconds stormTime{1};
  static constexpr std::chrono::seconds longestRestartTime{300};

  static std::expected<std::unique_ptr<Recorder>, Error> start(Parts parts);
  ~Recorder() override;

  std::uint64_t currentEventID(const std::string& root) override;
  std::expected<FolderChanges, JournalAbsence> changes(const Question& question) override;
  std::unique_ptr<RecordingWalk> beginWalk() override;
  bool waitUntilRecording(std::chrono::milliseconds timeout) override;
  Status status() override;
  void stop() override;

 private:
  using Clock = std::chrono::steady_clock;
  class Walk;
  // Something for the recorder's thread to do, after everything queued has been handled.
  struct Job {
    std::function<void()> work;
    bool done = false;
  };

  Recorder(Parts parts, EventQueue queue, FileHandle wake);

  bool isCovered(std::uint64_t since, JournalAbsence& reason) const;
  bool perform(std::function<void()> work, Clock::time_point deadline);
  std::vector<std::shared_ptr<Job>> takeJobs(bool areLast = false);
  void tellDone(const std::vector<std::shared_ptr<Job>>& jobs);

  void run();
  void listen();
  bool wasAskedInVain(const std::vector<std::shared_ptr<Job>>& jobs) const;
  int untilRestart() const;
  void gather();
  void drain();
  void setUp();
  void beginAnew();
  void completeSetUp();
  void dropWatches();
  void takeLoss();
  void publish(std::optional<JournalAbsence> absence);
  void announce(JournalAbsence absence);
  void publishFigures();
  void takeFigures();

  const Parts parts_;
  FileHandle wake_;

  // The map and its queue: the recorder's thread, and scans that make the first walk.
  std::mutex mapMutex_;
  EventQueue queue_;
  EventClock clock_;
  WatchedTree tree_;
  std::uint64_t walkNumber_ = 0;

  // What other threads see; only the recorder's thread changes it.
  std::mutex gate_;
  std::condition_variable changed_;
  std::vector<std::shared_ptr<Job>> jobs_;
  bool ended_ = false;
  Status status_{.absence = JournalAbsence::notRecording, .limitAdvice = {}};
  std::uint64_t walkEventID_ = 0;
  std::uint64_t completeEventID_ = 0;
  std::atomic<bool> stopping_ = false;

  // The recorder's thread alone.
  bool lossTaken_ = true;
  std::optional<JournalAbsence> lastLoss_;
  std::optional<Clock::time_point> restartAt_;
  std::optional<Clock::time_point> lastLossAt_;
  std::chrono::seconds restartTime_{0};
  std::uint64_t burst_ = 0;

  std::thread thread_;
};

}  // namespace spacemint
