#include "core/host/IoPriority.h"

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

}  // namespace

ThrottledIo::ThrottledIo() : saved_(ioPriority()) {
  setIoPriority(idleClass << classShift);
}

ThrottledIo::~ThrottledIo() {
  if (saved_ >= 0) setIoPriority(saved_);
}

}  // namespace spacemint
