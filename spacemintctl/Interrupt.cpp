#include "spacemintctl/Interrupt.h"

#include <atomic>
#include <csignal>

namespace spacemint::ctl {

namespace {

std::atomic<bool> interruptNoted = false;
static_assert(std::atomic<bool>::is_always_lock_free);  // it is set in a signal handler

}  // namespace

void noteInterrupts() {
  struct sigaction action {};
  action.sa_handler = [](int) { interruptNoted = true; };
  action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
  sigset_t signals{};
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    sigaction(signal, &action, nullptr);
    sigaddset(&signals, signal);
  }
  // Whoever started us may have held them back.
  pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

bool wasInterrupted() {
  return interruptNoted;
}

}  // namespace spacemint::ctl
