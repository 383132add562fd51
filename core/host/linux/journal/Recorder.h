#pragma once

#include "core/host/EventRecorder.h"
#include "core/host/linux/journal/JournalEndpoint.h"
#include "core/host/linux/journal/JournalServer.h"
#include "core/host/linux/journal/WatchedTree.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace spacemint {

/// The recorder of one root. It owns the root's lock and socket, and a thread that owns the map of folders,
/// fetches events in bursts, and answers a query when all events queued at the query have been handled. The
/// thread sleeps while nothing happens.
class Recorder final : public EventRecorder, public std::enable_shared_from_this<Recorder> {
 public:
  /// How long events may gather before they are fetched: normally, and after a burst of many events.
  static constexpr std::chrono::milliseconds burstTime{10};
  static constexpr std::chrono::milliseconds stormTime{1};
  /// How long the recorder waits before it crawls again after it lost events. Doubles with each loss.
  static constexpr std::chrono::seconds firstRestartTime{1};
  static constexpr std::chrono::seconds longestRestartTime{300};
  /// The name of the thread, as system tools show it.
  static constexpr const char* threadName = "recorder";

  static std::expected<std::shared_ptr<Recorder>, Error> start(Options options);
  ~Recorder() override;

  std::uint64_t currentEventID(const JournalQuery& query) override;
  std::expected<FolderChanges, JournalError> changes(const JournalQuery& query) override;
  std::expected<MeasuredChanges, JournalError> measuredChanges(const JournalQuery& query) override;
  std::unique_ptr<RecordingCrawl> beginCrawl(const std::string& root) override;
  bool waitUntilRecording(std::chrono::milliseconds timeout) override;
  Status status() override;
  void stop() override;

 private:
  using Clock = std::chrono::steady_clock;
  class Crawl;
  // Work for the recorder's thread, done after all queued events have been handled.
  struct Job {
    std::function<void()> work;
    bool done = false;
  };
  // What `start` acquires.
  struct Parts {
    JournalEndpoint endpoint;
    FileLock lock;
    std::uint64_t firstEventID = 0;
    EventQueue queue;
    FileHandle wake;
  };

  Recorder(Options options, Parts parts);
  std::expected<void, Error> serve();

  template <class Answer>
  Answer answer(const JournalQuery& query, std::function<Answer()> ask);
  std::optional<JournalError> obstacleTo(std::uint64_t since) const;
  void perform(std::function<void()> work);
  bool perform(std::function<void()> work, const JournalQuery& query);
  std::shared_ptr<Job> submit(std::function<void()> work);
  std::vector<std::shared_ptr<Job>> takeJobs(bool areLast = false);
  void finish(const std::vector<std::shared_ptr<Job>>& jobs);

  void run();
  void poll();
  bool wasAskedInVain(const std::vector<std::shared_ptr<Job>>& jobs) const;
  int untilRestart() const;
  void collect();
  void drain();
  void setUp();
  void beginAnew();
  void completeSetUp();
  void dropWatches();
  void takeError();
  void publish(std::optional<JournalError> error);
  void publishLocked(std::optional<JournalError> error);
  void publishFigures();
  void updateFigures();

  const Options options_;
  JournalEndpoint endpoint_;
  FileLock lock_;  // held until the socket is removed
  std::unique_ptr<JournalServer> server_;
  FileHandle wake_;
  const std::uint64_t firstEventID_;

  // Guards the map and its queue: used by the recorder's thread and by scans that crawl.
  std::mutex mapMutex_;
  EventQueue queue_;
  EventClock clock_;
  WatchedTree tree_;
  std::uint64_t crawlNumber_ = 0;

  // Guards what other threads see. Only the recorder's thread changes the status.
  std::mutex gate_;
  std::condition_variable changed_;
  std::vector<std::shared_ptr<Job>> jobs_;
  bool ended_ = false;
  Status status_{.error = JournalError::notRecording};
  std::uint64_t crawlEventID_ = 0;
  std::uint64_t completeEventID_ = 0;
  std::atomic<bool> stopping_ = false;

  // Used by the recorder's thread alone.
  bool errorTaken_ = true;
  std::optional<JournalError> lastError_;
  std::optional<Clock::time_point> restartAt_;
  std::optional<Clock::time_point> lastLossAt_;
  std::chrono::seconds restartTime_{0};
  std::size_t burst_ = 0;

  std::thread thread_;
};

}  // namespace spacemint
