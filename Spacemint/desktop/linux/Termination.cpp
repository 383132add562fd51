#include "Spacemint/desktop/linux/Termination.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <utility>

namespace spacemint {

namespace {

constexpr int signals[] = {SIGTERM, SIGINT, SIGHUP};

// Global, because a signal handler has no argument for it.
std::atomic<int> counter = -1;

void handle(int number, void (*handler)(int)) {
  struct sigaction action {};
  sigaction(number, nullptr, &action);
  if (action.sa_handler == SIG_IGN) return;
  action = {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  sigaction(number, &action, nullptr);
}

void handleAll(void (*handler)(int)) {
  for (const int number : signals) handle(number, handler);
}

// Uses only functions that are safe in a signal handler.
void signalled(int /*number*/) {
  const int error = errno;
  handleAll(SIG_DFL);
  eventfd_write(counter, 1);
  errno = error;
}

int makeCounter() {
  counter = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
  return counter;
}

}  // namespace

Termination::Termination(std::function<void()> requested) : notifier_(makeCounter(), QSocketNotifier::Read) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [requested = std::move(requested)] {
    eventfd_t count = 0;
    if (eventfd_read(counter, &count) == 0) requested();
  });
  handleAll(signalled);
}

Termination::~Termination() {
  handleAll(SIG_DFL);
  notifier_.setEnabled(false);
  close(counter.exchange(-1));
}

}  // namespace spacemint
