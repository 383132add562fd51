#include "spacemintctl/Interrupt.h"

#include <atomic>
#include <csignal>
#include <initializer_list>

namespace spacemint::ctl {

namespace {

std::atomic<bool> interruptNoted = false;
static_assert(std::atomic<bool>::is_always_lock_free);  // a signal handler sets it

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
  // The parent process may have blocked these signals, and a child inherits blocked signals.
  pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

bool wasInterrupted() {
  return interruptNoted;
}

}  // namespace spacemint::ctl
