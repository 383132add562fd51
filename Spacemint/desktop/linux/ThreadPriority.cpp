#include "Spacemint/desktop/linux/ThreadPriority.h"

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>

#include <string>

namespace spacemint {

// SCHED_BATCH rather than SCHED_IDLE: an idle thread can stand still for minutes on a busy system.
void runAtLowPriority() {
  constexpr int callingThread = 0;
  constexpr int lowestPriority = 19;
  const sched_param none{};
  sched_setscheduler(callingThread, SCHED_BATCH, &none);
  setpriority(PRIO_PROCESS, callingThread, lowestPriority);  // of one thread only, on Linux
}

void nameThread(const char* name) {
  constexpr std::size_t longest = 15;
  pthread_setname_np(pthread_self(), std::string{name}.substr(0, longest).c_str());
}

}  // namespace spacemint
