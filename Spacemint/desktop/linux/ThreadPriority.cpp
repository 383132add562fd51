#include "Spacemint/desktop/linux/ThreadPriority.h"

#include <pthread.h>
#include <sched.h>

#include <string>

namespace spacemint {

void runWhenNobodyElseDoes() {
  constexpr int callingThread = 0;
  const sched_param none{};
  sched_setscheduler(callingThread, SCHED_IDLE, &none);
}

void nameThread(const char* name) {
  constexpr std::size_t longest = 15;
  pthread_setname_np(pthread_self(), std::string{name}.substr(0, longest).c_str());
}

}  // namespace spacemint
