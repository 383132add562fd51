#pragma once

#include "Spacemint/desktop/WhileAlive.h"

#include <QFuture>
#include <QPointer>
#include <QPromise>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace spacemint {

/// Work that would hold up the main thread, and the way back to it.
///
/// Futures are only touched on the main thread: what other threads hand over goes through locks of our own,
/// so that a thread sanitizer sees all of it.
class Tasks {
 public:
  using Function = std::move_only_function<void()>;

  enum class Priority : std::uint8_t {
    /// Nobody waits for it: a thread of its own at low priority.
    background,
    /// Somebody will look at it soon.
    utility,
    /// Somebody waits for it.
    userInitiated,
    /// Somebody waits for it and it may take minutes: a thread of its own.
    alone
  };

  struct Task {
    Priority priority = Priority::utility;
    /// Runs on another thread, and is destroyed there.
    Function work;
    /// Runs on the main thread after that.
    Function done;
    /// The name of a thread of its own.
    const char* threadName = nullptr;
  };

  Tasks() = default;
  Tasks(const Tasks&) = delete;
  Tasks& operator=(const Tasks&) = delete;
  virtual ~Tasks() = default;

  /// Main thread only.
  virtual void start(Task task) = 0;

  /// Runs a function on the main thread, in the order of the calls. Any thread.
  virtual void post(Function function) = 0;

  /// Starts `work`, and calls `then` with its result on the main thread, unless `context` is gone by then.
  /// Main thread only.
  template <class Work, class Then>
  void run(Priority priority, QObject* context, Work work, Then then, const char* threadName = nullptr) {
    auto result = std::make_shared<std::optional<std::invoke_result_t<Work&>>>();
    start({.priority = priority,
           .work = [result, work = std::move(work)]() mutable { result->emplace(work()); },
           .done =
               [result, guard = QPointer<QObject>{context}, then = std::move(then)]() mutable {
                 if (guard) then(std::move(**result));
               },
           .threadName = threadName});
  }

  /// Starts `work` and gives what it returns, which must not be void. Main thread only.
  template <class Work, class Result = std::invoke_result_t<Work&>>
  QFuture<Result> run(Priority priority, Work work, const char* threadName = nullptr) {
    auto promise = std::make_shared<QPromise<Result>>();
    promise->start();
    QFuture<Result> future = promise->future();
    auto result = std::make_shared<std::optional<Result>>();
    start({.priority = priority,
           .work = [result, work = std::move(work)]() mutable { result->emplace(work()); },
           .done =
               [result, promise] {
                 promise->addResult(std::move(**result));
                 promise->finish();
               },
           .threadName = threadName});
    return future;
  }
};

}  // namespace spacemint
