#pragma once

#include <QAbstractEventDispatcher>
#include <QObject>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <fstream>

namespace spacemint::support {

/// Measures how long the event loop of this thread is kept from turning: from each time it wakes up to when
/// it waits again. Time in which the thread was ready but got no processor is another's and does not count,
/// where the system tells it.
class LoopWatch : public QObject {
  Q_OBJECT
 public:
  LoopWatch() {
    auto* dispatcher = QAbstractEventDispatcher::instance();
    connect(dispatcher, &QAbstractEventDispatcher::awake, this, [this] { woke_ = now(); });
    connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, [this] {
      if (woke_.at.count() != 0) longest_ = std::max(longest_, since(woke_));
    });
  }

  std::chrono::nanoseconds longest() const { return longest_; }

 private:
  struct Moment {
    std::chrono::nanoseconds at{0};
    /// What the thread has waited for a processor.
    std::chrono::nanoseconds queued{0};
  };

  static Moment now() {
    std::int64_t ran = 0;
    std::int64_t queued = 0;
    std::ifstream{"/proc/thread-self/schedstat"} >> ran >> queued;
    return {std::chrono::steady_clock::now().time_since_epoch(), std::chrono::nanoseconds{queued}};
  }

  static std::chrono::nanoseconds since(const Moment& begin) {
    const Moment end = now();
    return (end.at - begin.at) - (end.queued - begin.queued);
  }

  Moment woke_;
  std::chrono::nanoseconds longest_{0};
};

}  // namespace spacemint::support
