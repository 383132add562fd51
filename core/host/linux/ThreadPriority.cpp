#include "core/host/ThreadPriority.h"

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace spacemint {

namespace {

// The values of linux/ioprio.h, which does not always compile as C++.
constexpr int ofOneThread = 1;
constexpr int idleClass = 3;
constexpr int classShift = 13;

constexpr int callingThread = 0;

int ioPriority() {
  return static_cast<int>(syscall(SYS_ioprio_get, ofOneThread, callingThread));
}

void setIoPriority(int priority) {
  syscall(SYS_ioprio_set, ofOneThread, callingThread, priority);
}

int niceness() {
  return getpriority(PRIO_PROCESS, callingThread);  // of one thread only, on Linux
}

}  // namespace

// Only the niceness, in the usual class: a thread of the batch or the idle class waits for the other threads
// again after every read, so that a scan of folders that are not cached takes eight times as long, or stands
// still.
void lowerPriority(const Deference& deference) {
  if (deference.idleIo) setIoPriority(idleClass << classShift);
  if (deference.niceness > niceness()) setpriority(PRIO_PROCESS, callingThread, deference.niceness);
}

LoweredPriority::LoweredPriority(const Deference& deference)
    : savedIo_(ioPriority()),
      savedNiceness_(niceness()) {
  lowerPriority(deference);
}

LoweredPriority::~LoweredPriority() {
  if (savedIo_ >= 0) setIoPriority(savedIo_);
  setpriority(PRIO_PROCESS, callingThread, savedNiceness_);
}

long waitsOfThread() {
  rusage usage{};
  getrusage(RUSAGE_THREAD, &usage);
  return usage.ru_nvcsw;
}

}  // namespace spacemint
