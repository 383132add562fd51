#include "spacemintctl/browse/Worker.h"

#include "core/base/Log.h"

#include <exception>
#include <string>
#include <utility>

namespace spacemint::ctl {

Worker::Worker(Inbox& inbox) : inbox_(inbox), thread_([this](const std::stop_token& stop) { loop(stop); }) {}

Worker::~Worker() {
  *isWanted_ = false;
}

void Worker::run(Work work) {
  const std::lock_guard lock{mutex_};
  waiting_.push_back(std::move(work));
  changed_.notify_one();
}

void Worker::tell(Then then) {
  inbox_.post([isWanted = isWanted_, then = std::move(then)] {
    if (*isWanted) then();
  });
}

void Worker::loop(const std::stop_token& stop) {
  for (;;) {
    Work work;
    {
      std::unique_lock lock{mutex_};
      if (!changed_.wait(lock, stop, [this] { return !waiting_.empty(); }) || stop.stop_requested()) return;
      work = std::move(waiting_.front());
      waiting_.pop_front();
    }
    try {
      if (Then then = work()) tell(std::move(then));
    } catch (const std::exception& problem) {
      log(LogLevel::info, std::string{"a piece of work failed: "} + problem.what());
    }
  }
}

}  // namespace spacemint::ctl
