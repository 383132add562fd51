#include "core/host/linux/journal/Recorder.h"

#include "core/base/LockSoon.h"
#include "core/host/UserFolders.h"
#include "core/host/linux/LinuxFolderListing.h"
#include "core/host/linux/journal/SessionCounter.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace spacemint {

namespace {

// With more events than this in one burst, the next burst is fetched sooner.
constexpr std::size_t stormEvents = 3'000;
// How often a waiting query looks whether it was cancelled.
constexpr std::chrono::milliseconds queryCheckInterval{50};

void raise(const FileHandle& wake) {
  eventfd_write(wake.get(), 1);
}

void lower(const FileHandle& wake) {
  eventfd_t count = 0;
  eventfd_read(wake.get(), &count);
}

}  // namespace

// The crawl of a scan, which sets up the recorder. Does nothing once a newer crawl has begun.
class Recorder::Crawl final : public RecordingCrawl, private FolderObserver {
 public:
  Crawl(std::shared_ptr<Recorder> recorder, std::uint64_t number, std::uint64_t eventID)
      : recorder_(std::move(recorder)),
        number_(number),
        eventID_(eventID),
        listing_(linuxFolderListing({.observer = this})) {}

  ~Crawl() override {
    if (finished_) return;
    recorder_->perform([this] {
      const std::lock_guard lock(recorder_->mapMutex_);
      if (isCurrent()) recorder_->tree_.fail(JournalError::notRecording);
    });
  }

  std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string& root) override {
    return listing_->open(root);
  }
  std::vector<ListedPlace> places() const override { return listing_->places(); }
  std::vector<LeftOut> leftOut() const override { return listing_->leftOut(); }
  std::uint64_t eventID() const override { return eventID_; }

  bool hasFailed() const override {
    const std::lock_guard lock(recorder_->mapMutex_);
    return !isCurrent() ||
           recorder_->tree_.error().value_or(JournalError::settingUp) != JournalError::settingUp;
  }

  void finish() override {
    finished_ = true;
    recorder_->perform([this] {
      const std::lock_guard lock(recorder_->mapMutex_);
      if (!isCurrent()) return;
      recorder_->tree_.setScanning(false);
      recorder_->completeSetUp();
    });
  }

 private:
  bool isCurrent() const { return recorder_->crawlNumber_ == number_; }

  FolderRef openedRoot(const FileHandle& folder, const std::vector<ListedPlace>& places) override {
    const std::unique_lock lock = lockSoon(recorder_->mapMutex_);
    if (!isCurrent() || !recorder_->tree_.begin(folder)) return {};
    if (places != recorder_->tree_.places()) recorder_->tree_.fail(JournalError::eventsLost);
    recorder_->tree_.setScanning(true);
    source_ = recorder_->queue_.source();
    return recorder_->tree_.rootRef();
  }

  // The folder is watched before the lock is taken, because watching takes the longest.
  FolderRef opened(FolderRef parent, std::string_view name, const FileHandle& folder) override {
    if (!source_ || parent == FolderRef{}) return {};
    const auto watched = source_->watch(folder);
    rewindFolder(folder);
    const std::unique_lock lock = lockSoon(recorder_->mapMutex_);
    return isCurrent() ? recorder_->tree_.adopt(parent, name, watched) : FolderRef{};
  }

  void couldNotOpen(FolderRef parent, std::string_view name) override {
    const std::unique_lock lock = lockSoon(recorder_->mapMutex_);
    if (isCurrent()) recorder_->tree_.adoptClosed(parent, name);
  }

  void listed(FolderRef folder, const FolderSum& sum) override {
    const std::unique_lock lock = lockSoon(recorder_->mapMutex_);
    if (isCurrent()) recorder_->tree_.adoptListed(folder, sum);
  }

  void couldNotList(FolderRef folder) override {
    const std::unique_lock lock = lockSoon(recorder_->mapMutex_);
    if (isCurrent()) recorder_->tree_.adoptUnlisted(folder);
  }

  std::shared_ptr<Recorder> recorder_;
  std::uint64_t number_;
  std::uint64_t eventID_;
  std::unique_ptr<FolderListing> listing_;
  // Set when the root is opened, before any of its subfolders. Stays null when the root cannot be recorded.
  std::shared_ptr<EventSource> source_;
  bool finished_ = false;
};

std::expected<std::shared_ptr<EventRecorder>, Error> EventRecorder::start(Options options) {
  return Recorder::start(std::move(options));
}

std::expected<std::shared_ptr<Recorder>, Error> Recorder::start(Options options) {
  auto endpoint = JournalEndpoint::forRoot(options.root, options.endpointFolder);
  if (!endpoint) return std::unexpected(std::move(endpoint).error());
  auto lock = endpoint->lock();
  if (!lock) return std::unexpected(std::move(lock).error());
  if (!openFolder(AT_FDCWD, options.root.c_str())) return std::unexpected(systemError(options.root, errno));
  const std::string stateFolder =
      options.stateFolder.empty() ? UserFolders::state() + "/spacemint" : options.stateFolder;
  const auto firstEventID = SessionCounter::begin(stateFolder, SessionCounter::drawRandomly);
  if (!firstEventID) return std::unexpected(firstEventID.error());
  auto queue = EventQueue::open();
  if (!queue) return std::unexpected(std::move(queue).error());
  FileHandle wake{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
  if (!wake) return std::unexpected(systemError(options.root, errno));
  std::shared_ptr<Recorder> recorder{new Recorder(std::move(options), {.endpoint = std::move(*endpoint),
                                                                       .lock = std::move(*lock),
                                                                       .firstEventID = *firstEventID,
                                                                       .queue = std::move(*queue),
                                                                       .wake = std::move(wake)})};
  if (auto serving = recorder->serve(); !serving) return std::unexpected(std::move(serving).error());
  return recorder;
}

Recorder::Recorder(Options options, Parts parts)
    : options_(std::move(options)),
      endpoint_(std::move(parts.endpoint)),
      lock_(std::move(parts.lock)),
      wake_(std::move(parts.wake)),
      firstEventID_(parts.firstEventID),
      queue_(std::move(parts.queue)),
      clock_(firstEventID_),
      tree_({.root = options_.root,
             .queue = queue_,
             .clock = clock_,
             .watchLimit = options_.watchLimit,
             .shouldStop = [this] { return stopping_.load(); }}) {
  if (options_.crawlsAtOnce) status_.error = JournalError::settingUp;
}

// Starts both threads.
std::expected<void, Error> Recorder::serve() {
  auto listener = endpoint_.listen();
  if (!listener) return std::unexpected(std::move(listener).error());
  auto server = JournalServer::start({.journal = *this, .listener = std::move(*listener)});
  if (!server) return std::unexpected(std::move(server).error());
  server_ = std::move(*server);
  thread_ = std::thread([this] {
    pthread_setname_np(pthread_self(), threadName);
    run();
  });
  return {};
}

Recorder::~Recorder() {
  stop();
}

// The recorder's thread ends first: it answers the queries that the server's thread waits for.
void Recorder::stop() {
  stopping_ = true;
  raise(wake_);
  if (thread_.joinable()) thread_.join();
  server_.reset();
  endpoint_.remove();
}

std::uint64_t Recorder::currentEventID(const JournalQuery& query) {
  const std::lock_guard lock(gate_);
  return query.root == options_.root && !status_.error ? clock_.give() : 0;
}

std::expected<FolderChanges, JournalError> Recorder::changes(const JournalQuery& query) {
  using Answer = std::expected<FolderChanges, JournalError>;
  return answer<Answer>(query, [this, since = query.since] { return tree_.changes(since); });
}

std::expected<MeasuredChanges, JournalError> Recorder::measuredChanges(const JournalQuery& query) {
  using Answer = std::expected<MeasuredChanges, JournalError>;
  return answer<Answer>(query, [this, query] { return tree_.measuredChanges(query); });
}

// Calls `ask` on the recorder's thread with `mapMutex_` locked, if this session can answer.
template <class Answer>
Answer Recorder::answer(const JournalQuery& query, std::function<Answer()> ask) {
  if (query.root != options_.root) return std::unexpected(JournalError::notRecording);
  if (const auto error = status().error; error == JournalError::settingUp) return std::unexpected(*error);
  // Shared, because after a timeout the work is done when this call has returned.
  auto answer = std::make_shared<Answer>();
  const auto work = [this, answer, ask = std::move(ask), since = query.since] {
    if (const auto obstacle = obstacleTo(since)) {
      *answer = std::unexpected(*obstacle);
      return;
    }
    {
      const std::lock_guard lock(mapMutex_);
      *answer = ask();
    }
    takeError();
  };
  if (!perform(work, query)) {
    return std::unexpected(stopping_ ? JournalError::notRecording : JournalError::timedOut);
  }
  return std::move(*answer);
}

// A session answers for the ids that it gave out after its crawl was complete, and for the id of that crawl.
std::optional<JournalError> Recorder::obstacleTo(std::uint64_t since) const {
  if (status_.error) return status_.error;
  if (since < firstEventID_) return JournalError::olderThanSession;
  if (since >= clock_.stamp()) return JournalError::fromTheFuture;
  if (since < completeEventID_ && since != crawlEventID_) {
    return lastError_.value_or(JournalError::olderThanSession);
  }
  return std::nullopt;
}

std::unique_ptr<RecordingCrawl> Recorder::beginCrawl(const std::string& root) {
  if (root != options_.root || !status().error) return nullptr;
  std::uint64_t number = 0;
  std::uint64_t eventID = 0;
  perform([&] {
    const std::lock_guard lock(mapMutex_);
    beginAnew();
    number = crawlNumber_;
    eventID = clock_.give();
    const std::lock_guard gate(gate_);
    crawlEventID_ = eventID;
  });
  return std::make_unique<Crawl>(shared_from_this(), number, eventID);
}

bool Recorder::waitUntilRecording(std::chrono::milliseconds timeout) {
  std::unique_lock lock(gate_);
  const auto isDecided = [&] {
    return status_.error != JournalError::settingUp && status_.error != JournalError::eventsLost;
  };
  return changed_.wait_until(lock, Clock::now() + timeout, isDecided) && !status_.error;
}

EventRecorder::Status Recorder::status() {
  const std::lock_guard lock(gate_);
  return status_;
}

// With `gate_` locked. Null when the recorder has ended.
std::shared_ptr<Recorder::Job> Recorder::submit(std::function<void()> work) {
  if (ended_) return nullptr;
  auto job = std::make_shared<Job>(Job{.work = std::move(work)});
  jobs_.push_back(job);
  raise(wake_);
  return job;
}

// Blocks until the recorder's thread has done the work. Does nothing when the recorder has ended.
void Recorder::perform(std::function<void()> work) {
  std::unique_lock lock(gate_);
  const auto job = submit(std::move(work));
  if (job) changed_.wait(lock, [&] { return job->done; });
}

// The same with the timeout of a query. False when the work is not done yet; it is then done later.
bool Recorder::perform(std::function<void()> work, const JournalQuery& query) {
  const auto deadline = Clock::now() + query.timeout;
  std::unique_lock lock(gate_);
  const auto job = submit(std::move(work));
  if (!job) return false;
  const auto isDone = [&] { return job->done; };
  while (!changed_.wait_until(lock, std::min(deadline, Clock::now() + queryCheckInterval), isDone)) {
    if (Clock::now() >= deadline || (query.shouldCancel && query.shouldCancel())) return false;
  }
  return true;
}

std::vector<std::shared_ptr<Recorder::Job>> Recorder::takeJobs(bool areLast) {
  const std::lock_guard lock(gate_);
  ended_ = areLast;
  return std::exchange(jobs_, {});
}

void Recorder::finish(const std::vector<std::shared_ptr<Job>>& jobs) {
  if (jobs.empty()) return;
  const std::lock_guard lock(gate_);
  for (const auto& job : jobs) job->done = true;
  changed_.notify_all();
}

void Recorder::run() {
  if (options_.crawlsAtOnce) setUp();
  while (!stopping_) {
    poll();
    // The jobs are taken before the events are fetched: what a query is about happened before the query.
    const auto jobs = takeJobs();
    drain();
    takeError();
    for (const auto& job : jobs) job->work();
    takeError();
    const bool beginsAnew = restartAt_ ? *restartAt_ <= Clock::now() : wasAskedInVain(jobs);
    // Published before the jobs are finished, so that a caller who got no answer can wait for the set-up.
    if (beginsAnew) publish(JournalError::settingUp);
    finish(jobs);
    if (beginsAnew) setUp();
    publishFigures();
    collect();
  }
  publish(JournalError::notRecording);
  const auto jobs = takeJobs(true);
  for (const auto& job : jobs) job->work();
  finish(jobs);
}

// A caller got no answer and so makes a full scan now. The recorder shall be ready for its next scan.
bool Recorder::wasAskedInVain(const std::vector<std::shared_ptr<Job>>& jobs) const {
  return !jobs.empty() && options_.crawlsAtOnce && status_.error && status_.error != JournalError::settingUp;
}

// Sleeps until there are events or jobs, a mount changes, or something is due.
void Recorder::poll() {
  std::array<pollfd, 3> ready{{{wake_.get(), POLLIN, 0}, {queue_.descriptor(), POLLIN, 0}, {-1, POLLPRI, 0}}};
  int timeout = 0;
  {
    const std::lock_guard lock(mapMutex_);
    if (queue_.size() > 0) return;
    ready[2].fd = tree_.mounts().descriptor();
    timeout = tree_.hasMovedOut() ? static_cast<int>(WatchedTree::moveTime.count()) : untilRestart();
  }
  ::poll(ready.data(), ready.size(), timeout);
  if (ready[0].revents != 0) lower(wake_);
  if (ready[2].revents == 0) return;
  const std::lock_guard lock(mapMutex_);
  tree_.noticeMounts();
}

// In milliseconds; -1 when no restart is due.
int Recorder::untilRestart() const {
  if (!restartAt_) return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(*restartAt_ - Clock::now());
  return static_cast<int>(std::max(left.count(), std::chrono::milliseconds::rep{0}));
}

// Lets events gather, because waking up for each event would cost more than handling it. A job ends the wait.
void Recorder::collect() {
  if (burst_ == 0 || stopping_) return;
  pollfd ready{wake_.get(), POLLIN, 0};
  ::poll(&ready, 1, static_cast<int>((burst_ > stormEvents ? stormTime : burstTime).count()));
}

// Handles the events queued at the call. Crawls on the way add others, which wait for the next call.
void Recorder::drain() {
  const std::lock_guard lock(mapMutex_);
  queue_.fetch();
  burst_ = queue_.takeReceived();
  for (std::size_t left = queue_.size(); left > 0; --left) {
    if (const auto event = queue_.next()) tree_.handle(*event);
  }
  tree_.settle(Clock::now());
  if (queue_.hasOverflowed()) tree_.fail(JournalError::eventsLost);
}

// Crawls the whole root itself. Events that come meanwhile are fetched during the crawl and handled after it.
void Recorder::setUp() {
  {
    const std::lock_guard lock(mapMutex_);
    beginAnew();
    FileHandle root = openFolder(AT_FDCWD, options_.root.c_str());
    if (!root) {
      tree_.fail(JournalError::rootReplaced);
    } else if (tree_.begin(root)) {
      tree_.crawlFromRoot(std::move(root));
    }
  }
  drain();
  {
    const std::lock_guard lock(mapMutex_);
    completeSetUp();
  }
  takeError();
}

// With `mapMutex_` locked.
void Recorder::beginAnew() {
  ++crawlNumber_;
  restartAt_.reset();
  dropWatches();
  tree_.reset();
  errorTaken_ = false;
  publishLocked(JournalError::settingUp);
}

// With `mapMutex_` locked.
void Recorder::completeSetUp() {
  if (tree_.error()) return;
  {
    const std::lock_guard lock(gate_);
    completeEventID_ = clock_.give();
  }
  publishLocked(std::nullopt);
}

// Closing the old queue's descriptor removes all its watches at once.
void Recorder::dropWatches() {
  if (auto queue = EventQueue::open()) queue_ = std::move(*queue);
}

// Publishes a new error of the tree. After lost events, plans the next crawl.
void Recorder::takeError() {
  const std::lock_guard lock(mapMutex_);
  const auto error = tree_.error();
  if (errorTaken_ || !error || error == JournalError::settingUp) return;
  errorTaken_ = true;
  lastError_ = error;
  dropWatches();
  publishLocked(error);
  if (error != JournalError::eventsLost) return;
  const auto now = Clock::now();
  const bool isRare = !lastLossAt_ || now - *lastLossAt_ > longestRestartTime;
  restartTime_ = isRare ? firstRestartTime : std::min(restartTime_ * 2, longestRestartTime);
  lastLossAt_ = now;
  restartAt_ = now + restartTime_;
}

void Recorder::publish(std::optional<JournalError> error) {
  const std::lock_guard lock(mapMutex_);
  publishLocked(error);
}

// With `mapMutex_` locked.
void Recorder::publishLocked(std::optional<JournalError> error) {
  const std::lock_guard lock(gate_);
  status_.error = error;
  updateFigures();
  changed_.notify_all();
}

void Recorder::publishFigures() {
  const std::lock_guard lock(mapMutex_);
  const std::lock_guard gate(gate_);
  updateFigures();
}

// With both mutexes locked.
void Recorder::updateFigures() {
  status_.folders = tree_.map().size();
  status_.watches = tree_.map().watches();
  status_.memory = tree_.map().memory() + queue_.source()->memory();
  status_.marksFileSystem = queue_.marksFileSystem();
  status_.limitAdvice = tree_.hitWatchLimit() ? watchLimitAdvice() : "";
}

}  // namespace spacemint
