#pragma once

#include "support/ChildProcess.h"

#include <unistd.h>

#include <functional>

namespace spacemint::support {

/// A process that keeps what `hold` opened until this object goes.
class HoldingProcess {
 public:
  /// Returns when `hold` is done.
  explicit HoldingProcess(const std::function<void()>& hold) {
    if (pipe(ready_) != 0 || pipe(end_) != 0) return;
    child_ = startChild([&] {
      close(end_[1]);
      hold();
      close(ready_[0]);
      close(ready_[1]);
      char byte = 0;
      return read(end_[0], &byte, 1) == 0;
    });
    close(ready_[1]);
    char byte = 0;
    [[maybe_unused]] const auto isReady = read(ready_[0], &byte, 1);
  }
  HoldingProcess(const HoldingProcess&) = delete;
  HoldingProcess& operator=(const HoldingProcess&) = delete;
  ~HoldingProcess() {
    close(end_[1]);
    statusOf(child_);
    close(end_[0]);
    close(ready_[0]);
  }

  pid_t pid() const { return child_; }

 private:
  int ready_[2]{};
  int end_[2]{};
  pid_t child_ = 0;
};

}  // namespace spacemint::support
