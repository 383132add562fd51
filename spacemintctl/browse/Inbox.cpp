#include "spacemintctl/browse/Inbox.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace spacemint::ctl {

Inbox::Inbox() {
  if (pipe2(ends_, O_CLOEXEC | O_NONBLOCK) != 0) throw std::system_error(errno, std::generic_category());
}

Inbox::~Inbox() {
  close(ends_[0]);
  close(ends_[1]);
}

void Inbox::post(std::function<void()> work) {
  const std::lock_guard lock{mutex_};
  waiting_.push_back(std::move(work));
  if (waiting_.size() > 1) return;  // the descriptor is readable already
  [[maybe_unused]] const auto written = write(ends_[1], "", 1);
}

void Inbox::run() {
  std::vector<std::function<void()>> work;
  {
    const std::lock_guard lock{mutex_};
    char byte = 0;
    [[maybe_unused]] const auto taken = read(ends_[0], &byte, 1);
    work.swap(waiting_);
  }
  for (const auto& each : work) each();
}

}  // namespace spacemint::ctl
