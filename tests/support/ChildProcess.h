#pragma once

#include <sys/resource.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

namespace spacemint::support {

/// Starts `work` in a child process, whose exit status is 0 when it answers true.
inline pid_t startChild(const std::function<bool()>& work) {
  const pid_t child = fork();
  if (child == 0) _exit(work() ? 0 : 1);
  return child;
}

/// The wait status of a child.
inline int statusOf(pid_t child) {
  int status = -1;
  waitpid(child, &status, 0);
  return status;
}

inline bool succeedsInChild(const std::function<bool()>& work) {
  return statusOf(startChild(work)) == 0;
}

/// Files of this process may not grow past `bytes` any more, as on a full disk. What writes on gets the error
/// EFBIG where `onExcess` is SIG_IGN, and is killed in the middle of its work where it is SIG_DFL.
inline void limitFileSize(rlim_t bytes, sighandler_t onExcess) {
  const rlimit size{bytes, bytes};
  const rlimit noCoreFile{0, 0};
  setrlimit(RLIMIT_FSIZE, &size);
  setrlimit(RLIMIT_CORE, &noCoreFile);
  std::signal(SIGXFSZ, onExcess);
}

/// From now on nobody in particular: a user whom permissions bind.
inline bool becomeNobody() {
  constexpr uid_t nobody = 65534;
  return geteuid() != 0 || (setresgid(nobody, nobody, nobody) == 0 && setresuid(nobody, nobody, nobody) == 0);
}

}  // namespace spacemint::support
