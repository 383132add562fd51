#include "core/host/IoPriority.h"

#include <linux/ioprio.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace spacemint {

namespace {

constexpr int callingThread = 0;

int ioPriority() {
  return static_cast<int>(syscall(SYS_ioprio_get, IOPRIO_WHO_PROCESS, callingThread));
}

void setIoPriority(int priority) {
  syscall(SYS_ioprio_set, IOPRIO_WHO_PROCESS, callingThread, priority);
}

}  // namespace

ThrottledIo::ThrottledIo() : saved_(ioPriority()) {
  setIoPriority(IOPRIO_PRIO_VALUE(IOPRIO_CLASS_IDLE, 0));
}

ThrottledIo::~ThrottledIo() {
  if (saved_ >= 0) setIoPriority(saved_);
}

}  // namespace spacemint
