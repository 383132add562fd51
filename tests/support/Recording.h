#pragma once

#include <fcntl.h>
#include <linux/capability.h>
#include <semaphore.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>

namespace spacemint::support {

/// A folder on a file system that a recorder trusts. In a container the usual temporary folder may be on an
/// overlay. In memory where possible: a disk decides later how many blocks a file has, and no event reports
/// it.
inline std::filesystem::path recordableFolder() {
  struct statfs status {};
  constexpr decltype(status.f_type) memory = 0x01021994;
  const bool isInMemory =
      statfs("/dev/shm", &status) == 0 && status.f_type == memory && access("/dev/shm", W_OK) == 0;
  return isInMemory ? std::filesystem::path{"/dev/shm"} : std::filesystem::temp_directory_path();
}

/// Takes the calling thread, and the threads it starts, the right to mark a file system. A recorder started
/// here then watches every folder.
class WithoutMark {
 public:
  WithoutMark() {
    syscall(SYS_capget, &head_, saved_);
    set(saved_[0].effective & ~right);
  }
  ~WithoutMark() { set(saved_[0].effective); }
  WithoutMark(const WithoutMark&) = delete;
  WithoutMark& operator=(const WithoutMark&) = delete;

 private:
  static constexpr __u32 right = CAP_TO_MASK(CAP_DAC_READ_SEARCH);

  void set(__u32 effective) {
    __user_cap_data_struct sets[2]{saved_[0], saved_[1]};
    sets[0].effective = effective;
    syscall(SYS_capset, &head_, sets);
  }

  __user_cap_header_struct head_{_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct saved_[2]{};
};

/// Stops one thread of this process by a signal (SIGUSR1), while it sleeps and so holds no lock. One thread
/// at a time can be held.
class ThreadHold {
 public:
  /// Holds the thread with this name until it is released; there must be one.
  void take(const std::string& name) {
    static const bool isReady = prepare();
    (void)isReady;
    const pid_t thread = find(name);
    while (state(thread) != 'S') sched_yield();
    syscall(SYS_tgkill, getpid(), thread, SIGUSR1);
    while (sem_wait(&stopped) != 0) {
    }
  }
  void release() { sem_post(&released); }

 private:
  static bool prepare() {
    sem_init(&stopped, 0, 0);
    sem_init(&released, 0, 0);
    struct sigaction action {};
    action.sa_handler = [](int) {
      const int error = errno;
      sem_post(&stopped);
      while (sem_wait(&released) != 0) {
      }
      errno = error;
    };
    return sigaction(SIGUSR1, &action, nullptr) == 0;
  }

  static pid_t find(const std::string& name) {
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
      std::string found;
      std::getline(std::ifstream(task.path() / "comm"), found);
      if (found == name) return std::stoi(task.path().filename());
    }
    throw std::runtime_error("no thread " + name);
  }

  static char state(pid_t thread) {
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string word;
    file >> word >> word >> word;
    return word.empty() ? '?' : word.front();
  }

  static inline sem_t stopped;
  static inline sem_t released;
};

}  // namespace spacemint::support
