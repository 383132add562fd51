#include "Spacemint/desktop/linux/WorkerThreads.h"

#include "core/host/ThreadPriority.h"

#include <pthread.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>

namespace spacemint {

namespace {

// For the system's tools, which show only the first 15 bytes.
void nameThread(const char* name) {
  constexpr std::size_t longest = 15;
  pthread_setname_np(pthread_self(), std::string{name}.substr(0, longest).c_str());
}

}  // namespace

// The state of the threads. It is shared, because running threads may outlive the WorkerThreads object.
struct WorkerThreads::Shared {
  explicit Shared(Limits set) : limits(set) {}

  const Limits limits;
  std::mutex mutex;
  std::condition_variable changed;
  std::condition_variable ended;
  std::deque<Tasks::Function> sooner;
  std::deque<Tasks::Function> later;
  int threads = 0;
  int idle = 0;
  int running = 0;
  bool isClosed = false;

  std::size_t waiting() const { return sooner.size() + later.size(); }

  // The next function; absent when the thread must end: nothing came for too long, or it was closed.
  std::optional<Tasks::Function> take() {
    std::unique_lock lock(mutex);
    ++idle;
    changed.wait_for(lock, limits.idle, [this] { return isClosed || waiting() > 0; });
    --idle;
    if (waiting() == 0) {
      --threads;
      return std::nullopt;
    }
    auto& queue = sooner.empty() ? later : sooner;
    std::optional<Tasks::Function> function{std::move(queue.front())};
    queue.pop_front();
    ++running;
    return function;
  }

  // Destroys the function before it counts as ended.
  void run(Tasks::Function function) {
    std::exchange(function, {})();
    const std::scoped_lock lock(mutex);
    --running;
    ended.notify_all();
  }
};

WorkerThreads::WorkerThreads(Limits limits) : shared_(std::make_shared<Shared>(limits)) {}

WorkerThreads::~WorkerThreads() {
  finish(std::chrono::milliseconds{0});
}

void WorkerThreads::share(Order order, Tasks::Function function) {
  const std::scoped_lock lock(shared_->mutex);
  if (shared_->isClosed) return;
  (order == Order::sooner ? shared_->sooner : shared_->later).push_back(std::move(function));
  shared_->changed.notify_one();
  if (static_cast<std::size_t>(shared_->idle) >= shared_->waiting() ||
      shared_->threads >= shared_->limits.shared) {
    return;
  }
  ++shared_->threads;
  std::thread([shared = shared_] {
    nameThread("Spacemint work");
    while (auto next = shared->take()) shared->run(std::move(*next));
  }).detach();
}

void WorkerThreads::runAlone(const char* threadName, bool isQuiet, Tasks::Function function) {
  const std::scoped_lock lock(shared_->mutex);
  if (shared_->isClosed) return;
  ++shared_->running;
  std::thread([shared = shared_, name = std::string{threadName}, isQuiet,
               function = std::move(function)]() mutable {
    nameThread(name.c_str());
    if (isQuiet) lowerPriority({.idleIo = true, .niceness = backgroundNiceness});
    shared->run(std::move(function));
  }).detach();
}

bool WorkerThreads::finish(std::chrono::milliseconds timeout) {
  std::deque<Tasks::Function> dropped[2];  // destroyed after the unlock: a destructor may call this object
  std::unique_lock lock(shared_->mutex);
  shared_->isClosed = true;
  dropped[0].swap(shared_->sooner);
  dropped[1].swap(shared_->later);
  shared_->changed.notify_all();
  return shared_->ended.wait_for(lock, timeout, [this] { return shared_->running == 0; });
}

}  // namespace spacemint
