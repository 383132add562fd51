#include "core/host/linux/journal/Recorder.h"

#include "core/host/linux/journal/RecorderWalk.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace spacemint {

namespace {

// More bytes of events than this in one burst are a storm.
constexpr std::uint64_t stormBytes = 100'000;

void raise(const FileHandle& wake) {
  eventfd_write(wake.get(), 1);
}

EventQueue::Options queueOptions(const RecorderRules& rules) {
  return {.marksFileSystem = rules.marksFileSystem, .deafTo = rules.deafTo};
}

void lower(const FileHandle& wake) {
  eventfd_t count = 0;
  eventfd_read(wake.get(), &count);
}

}  // namespace

std::expected<std::unique_ptr<Recorder>, Error> Recorder::start(Parts parts) {
  auto queue = EventQueue::open(queueOptions(parts.rules));
  if (!queue) return std::unexpected(std::move(queue).error());
  FileHandle wake{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
  if (!wake) return std::unexpected(systemError(parts.root, errno));
  if (!openFolder(AT_FDCWD, parts.root.c_str())) return std::unexpected(systemError(parts.root, errno));
  std::unique_ptr<Recorder> recorder{new Recorder(std::move(parts), std::move(*queue), std::move(wake))};
  recorder->thread_ = std::thread([&running = *recorder] { running.run(); });
  return recorder;
}

Recorder::Recorder(Parts parts, EventQueue queue, FileHandle wake)
    : parts_(std::move(parts)),
      wake_(std::move(wake)),
      queue_(std::move(queue)),
      clock_(parts_.firstEventID),
      tree_({.root = parts_.root,
             .queue = queue_,
             .clock = clock_,
             .rules = parts_.rules,
             .watchLimit = parts_.watchLimit,
             .shouldStop = [this] { return stopping_.load(); }}) {
  if (parts_.walksAtOnce) status_.absence = JournalAbsence::settingUp;
}

Recorder::~Recorder() {
  stop();
}

void Recorder::stop() {
  stopping_ = true;
  raise(wake_);
  if (thread_.joinable()) thread_.join();
}

std::uint64_t Recorder::currentEventID(const std::string& root) {
  const std::lock_guard lock(gate_);
  return root == parts_.root && !status_.absence ? clock_.give() : 0;
}

std::expected<FolderChanges, JournalAbsence> Recorder::changes(const Question& question) {
  if (question.root != parts_.root) return std::unexpected(JournalAbsence::notRecording);
  const auto deadline = Clock::now() + question.timeout;
  if (const auto absence = status().absence; absence == JournalAbsence::settingUp) {
    return std::unexpected(*absence);
  }
  // The answer outlives this call where it comes too late.
  auto answer = std::make_shared<std::expected<FolderChanges, JournalAbsence>>();
  const auto work = [this, answer, since = question.since] {
    auto reason = JournalAbsence::failed;
    if (!isCovered(since, reason)) {
      *answer = std::unexpected(reason);
      return;
    }
    {
      const std::lock_guard lock(mapMutex_);
      *answer = tree_.changes(since);
    }
    takeLoss();
  };
  if (!perform(work, deadline)) {
    return std::unexpected(stopping_ ? JournalAbsence::notRecording : JournalAbsence::timedOut);
  }
  return std::move(*answer);
}

// Only this session's ids are known, and of them the one that its first walk began with and those given since
// that was complete.
bool Recorder::isCovered(std::uint64_t since, JournalAbsence& reason) const {
  if (status_.absence) {
    reason = *status_.absence;
  } else if (since < parts_.firstEventID) {
    reason = JournalAbsence::olderThanSession;
  } else if (since >= clock_.stamp()) {
    reason = JournalAbsence::fromTheFuture;
  } else if (since < completeEventID_ && since != walkEventID_) {
    reason = lastLoss_.value_or(JournalAbsence::olderThanSession);
  } else {
    return true;
  }
  return false;
}

std::unique_ptr<RecordingWalk> Recorder::beginWalk() {
  std::uint64_t number = 0;
  std::uint64_t eventID = 0;
  perform(
      [&] {
        const std::lock_guard lock(mapMutex_);
        beginAnew();
        number = walkNumber_;
        eventID = clock_.give();
        const std::lock_guard gate(gate_);
        walkEventID_ = eventID;
      },
      Clock::time_point::max());
  return std::make_unique<Walk>(*this, number, eventID);
}

bool Recorder::waitUntilRecording(std::chrono::milliseconds timeout) {
  std::unique_lock lock(gate_);
  const auto isDecided = [&] { return status_.absence != JournalAbsence::settingUp; };
  return changed_.wait_until(lock, Clock::now() + timeout, isDecided) && !status_.absence;
}

EventRecorder::Status Recorder::status() {
  const std::lock_guard lock(gate_);
  return status_;
}

// False when it is not done by the deadline; it is then done later, and nobody waits for it.
bool Recorder::perform(std::function<void()> work, Clock::time_point deadline) {
  const auto job = std::make_shared<Job>(Job{.work = std::move(work)});
  std::unique_lock lock(gate_);
  if (ended_) return false;
  jobs_.push_back(job);
  raise(wake_);
  const auto isDone = [&] { return job->done; };
  if (deadline != Clock::time_point::max()) return changed_.wait_until(lock, deadline, isDone);
  changed_.wait(lock, isDone);
  return true;
}

std::vector<std::shared_ptr<Recorder::Job>> Recorder::takeJobs(bool areLast) {
  const std::lock_guard lock(gate_);
  ended_ = areLast;
  return std::exchange(jobs_, {});
}

void Recorder::tellDone(const std::vector<std::shared_ptr<Job>>& jobs) {
  if (jobs.empty()) return;
  const std::lock_guard lock(gate_);
  for (const auto& job : jobs) job->done = true;
  changed_.notify_all();
}

void Recorder::run() {
  if (parts_.walksAtOnce) setUp();
  while (!stopping_) {
    if (parts_.rules.beforeListening) parts_.rules.beforeListening();
    listen();
    // First the jobs, then the events: what a question is about has happened before it was asked.
    const auto jobs = takeJobs();
    if (parts_.rules.drainsBeforeAnswering || jobs.empty()) drain();
    takeLoss();
    for (const auto& job : jobs) job->work();
    takeLoss();
    const bool beginsAnew = restartAt_ ? *restartAt_ <= Clock::now() : wasAskedInVain(jobs);
    // Said first, so that whoever was answered in vain can wait for it.
    if (beginsAnew) announce(JournalAbsence::settingUp);
    tellDone(jobs);
    if (beginsAnew) setUp();
    publishFigures();
    gather();
  }
  announce(JournalAbsence::notRecording);
  const auto jobs = takeJobs(true);
  for (const auto& job : jobs) job->work();
  tellDone(jobs);
}

// Somebody walks everything now, and is to find the recorder ready the next time.
bool Recorder::wasAskedInVain(const std::vector<std::shared_ptr<Job>>& jobs) const {
  return !jobs.empty() && parts_.walksAtOnce && status_.absence &&
         status_.absence != JournalAbsence::settingUp;
}

void Recorder::listen() {
  std::array<pollfd, 3> ready{{{wake_.get(), POLLIN, 0}, {queue_.descriptor(), POLLIN, 0}, {-1, POLLPRI, 0}}};
  int patience = 0;
  {
    const std::lock_guard lock(mapMutex_);
    if (queue_.taken() < queue_.fetched()) return;
    ready[2].fd = tree_.mounts().descriptor();
    patience = tree_.isWaiting() ? static_cast<int>(WatchedTree::awayTime.count()) : untilRestart();
  }
  poll(ready.data(), ready.size(), patience);
  if (ready[0].revents != 0) lower(wake_);
  if (ready[2].revents == 0) return;
  const std::lock_guard lock(mapMutex_);
  tree_.noticeMounts();
}

// In milliseconds; for ever where it is not due.
int Recorder::untilRestart() const {
  if (!restartAt_) return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(*restartAt_ - Clock::now());
  return static_cast<int>(std::max(left.count(), std::chrono::milliseconds::rep{0}));
}

// Being woken for each event would cost more than handling it. A question ends the wait.
void Recorder::gather() {
  if (burst_ == 0 || stopping_) return;
  pollfd ready{wake_.get(), POLLIN, 0};
  poll(&ready, 1, static_cast<int>((burst_ > stormBytes ? stormTime : burstTime).count()));
}

void Recorder::drain() {
  const std::lock_guard lock(mapMutex_);
  queue_.fetch();
  const std::uint64_t queued = queue_.fetched();
  burst_ = queue_.takeHeard();
  while (queue_.taken() < queued) {
    if (const auto event = queue_.next()) tree_.handle(*event);
  }
  tree_.settle(Clock::now());
  if (queue_.isBroken()) tree_.lose(JournalAbsence::eventsLost);
}

// Walks all folders itself. Events that come meanwhile are fetched on the way and handled after it.
void Recorder::setUp() {
  {
    const std::lock_guard lock(mapMutex_);
    beginAnew();
    FileHandle root = openFolder(AT_FDCWD, parts_.root.c_str());
    if (!root) {
      tree_.lose(JournalAbsence::rootReplaced);
    } else if (tree_.begin(root)) {
      tree_.walkFromRoot(std::move(root));
    }
  }
  drain();
  {
    const std::lock_guard lock(mapMutex_);
    completeSetUp();
  }
  takeLoss();
}

// With the map locked, as are the next one and `publish`.
void Recorder::beginAnew() {
  ++walkNumber_;
  restartAt_.reset();
  dropWatches();
  tree_.forget();
  lossTaken_ = false;
  publish(JournalAbsence::settingUp);
}

void Recorder::completeSetUp() {
  if (tree_.loss()) return;
  {
    const std::lock_guard lock(gate_);
    completeEventID_ = clock_.give();
  }
  publish(std::nullopt);
}

// They go with the descriptor that they belong to, all at once.
void Recorder::dropWatches() {
  if (auto queue = EventQueue::open(queueOptions(parts_.rules))) queue_ = std::move(*queue);
}

void Recorder::takeLoss() {
  const std::lock_guard lock(mapMutex_);
  const auto loss = tree_.loss();
  if (lossTaken_ || !loss || loss == JournalAbsence::settingUp) return;
  lossTaken_ = true;
  lastLoss_ = loss;
  dropWatches();
  publish(loss);
  if (loss != JournalAbsence::eventsLost) return;
  const auto now = Clock::now();
  const bool isRare = !lastLossAt_ || now - *lastLossAt_ > longestRestartTime;
  restartTime_ = isRare ? parts_.restartTime : std::min(restartTime_ * 2, longestRestartTime);
  lastLossAt_ = now;
  restartAt_ = now + restartTime_;
}

void Recorder::publish(std::optional<JournalAbsence> absence) {
  const std::lock_guard lock(gate_);
  status_.absence = absence;
  takeFigures();
  changed_.notify_all();
}

void Recorder::announce(JournalAbsence absence) {
  const std::lock_guard lock(mapMutex_);
  publish(absence);
}

void Recorder::publishFigures() {
  const std::lock_guard lock(mapMutex_);
  const std::lock_guard gate(gate_);
  takeFigures();
}

void Recorder::takeFigures() {
  status_.folders = tree_.map().size();
  status_.watches = tree_.map().watches();
  status_.memory = tree_.map().memory() + queue_.memory();
  status_.marksFileSystem = queue_.marksFileSystem();
  status_.limitAdvice = tree_.hitWatchLimit() ? watchLimitAdvice() : "";
}

}  // namespace spacemint
