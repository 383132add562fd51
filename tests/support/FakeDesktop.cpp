#include "support/FakeDesktop.h"

#include <algorithm>
#include <filesystem>

namespace spacemint::support {

void FakeClock::after(std::chrono::milliseconds delay, QObject* context, Callback callback) {
  timers_.emplace(passed_ + delay, Timer{.context = context, .callback = std::move(callback)});
}

void FakeClock::every(const Repeating& timing, QObject* context, Callback callback) {
  timers_.emplace(passed_ + timing.interval, Timer{context, std::move(callback), timing.interval});
}

bool FakeClock::ringNext(std::chrono::microseconds& rest) {
  const auto next = timers_.begin();
  if (next == timers_.end() || next->first > passed_ + rest) {
    passed_ += rest;
    rest = {};
    return false;
  }
  rest -= next->first - passed_;
  passed_ = next->first;
  Timer timer = std::move(next->second);
  timers_.erase(next);
  if (!timer.context) return true;
  if (timer.interval) timers_.emplace(passed_ + *timer.interval, timer);
  timer.callback();
  return true;
}

void FakeTasks::runHeldWork(Priority priority) {
  const auto next = std::ranges::find(waiting_, priority, &Task::priority);
  if (next == waiting_.end()) return;
  next->work();
  next->work = [] {};
}

bool FakeTasks::runNext() {
  if (!posted_.empty()) {
    Function function = std::move(posted_.front());
    posted_.pop_front();
    function();
    return true;
  }
  const auto next =
      std::ranges::find_if(waiting_, [this](const Task& task) { return !held_.contains(task.priority); });
  if (next == waiting_.end()) return false;
  Task task = std::move(*next);
  waiting_.erase(next);
  task.work();
  task.work = nullptr;
  post(std::move(task.done));
  return true;
}

std::expected<std::string, RemovalFailure> FakeTrash::move(const RemovalTarget& target) {
  const std::string to = folder / std::filesystem::path(target.path).filename().string();
  std::error_code failure;
  std::filesystem::rename(target.path, to, failure);
  if (failure) return std::unexpected(RemovalFailure{systemError("", failure.value()), target.path});
  return to;
}

class FakeScheduler::Repeating final : public QObject, public Scheduled {
 public:
  Repeating(FakeScheduler& scheduler, std::chrono::milliseconds interval, Handler handler)
      : scheduler_(scheduler),
        interval_(interval),
        handler_(std::move(handler)) {
    wait(interval_);
  }

 private:
  void wait(std::chrono::milliseconds delay) {
    scheduler_.clock_.after(delay, this, [this] {
      if (!scheduler_.isGood) return wait(std::chrono::minutes{1});
      ++scheduler_.begun;
      const auto handler = handler_;  // it may destroy this object
      handler([this] {
        ++scheduler_.finished;
        wait(interval_);
      });
    });
  }

  FakeScheduler& scheduler_;
  std::chrono::milliseconds interval_;
  Handler handler_;
};

std::unique_ptr<ActivityScheduler::Scheduled> FakeScheduler::schedule(const Activity& activity,
                                                                      Handler handler) {
  activities.push_back(activity);
  if (activity.interval <= Seconds{0}) return nullptr;
  return std::make_unique<Repeating>(
      *this, std::chrono::duration_cast<std::chrono::milliseconds>(activity.interval), std::move(handler));
}

void FakeDesktop::settle() {
  while (tasks.runNext()) {
  }
}

void FakeDesktop::advance(std::chrono::microseconds time) {
  settle();
  while (clock.ringNext(time)) settle();
  settle();
}

}  // namespace spacemint::support
