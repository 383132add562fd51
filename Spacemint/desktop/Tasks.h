#pragma once

#include <QPointer>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace spacemint {

/// Runs work on other threads, and brings the results back to the main thread.
///
/// Results cross threads through mutexes of our own, not through Qt: the thread sanitizer cannot see inside
/// the system's Qt.
class Tasks {
 public:
  using Function = std::move_only_function<void()>;

  enum class Priority : std::uint8_t {
    /// Nobody waits for the result. Gets a thread of its own, at low priority.
    background,
    /// The user will look at the result soon.
    utility,
    /// The user waits for the result.
    userInitiated,
    /// The user waits for the result and it may take minutes. Gets a thread of its own.
    alone
  };

  struct Task {
    Priority priority = Priority::utility;
    /// Runs on another thread, and is destroyed there.
    Function work;
    /// Runs on the main thread after that.
    Function done;
    /// The name of the thread, for a task with one of its own; at most 15 bytes are used.
    const char* threadName = nullptr;
  };

  Tasks() = default;
  Tasks(const Tasks&) = delete;
  Tasks& operator=(const Tasks&) = delete;
  virtual ~Tasks() = default;

  /// Main thread only.
  virtual void start(Task task) = 0;

  /// Runs functions on the main thread, in the order of the calls. Any thread.
  virtual void post(Function function) = 0;

  /// Starts `work`, which must not return void, and calls `then` with its result on the main thread, unless
  /// `context` was destroyed before. Main thread only.
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
};

}  // namespace spacemint
