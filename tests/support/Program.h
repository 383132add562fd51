#pragma once

#include "core/history/SnapshotStore.h"
#include "support/TemporaryFolder.h"

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace spacemint::support {

/// What a program said and how it ended.
struct Outcome {
  int exitCode = -1;
  std::string out = {};
  std::string err = {};
};

/// Runs programs as a person would, with home and runtime folders of their own and English wording.
class Program {
 public:
  /// The home folder is made in `parent`.
  explicit Program(std::string executable,
                   const std::filesystem::path& parent = std::filesystem::temp_directory_path());
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  const TemporaryFolder& home() const { return home_; }
  /// Writes to the end of a file of the home folder; its path.
  std::string addFile(const std::string& name, std::size_t bytes) const;
  /// The scans that it keeps.
  SnapshotStore scans() const { return {.directory = home_ / ".local/share/Spacemint/Snapshots"}; }

  Outcome run(const std::vector<std::string>& arguments) const { return start(arguments, false, false); }
  /// As a user whom permissions bind.
  Outcome runAsNobody(const std::vector<std::string>& arguments) const {
    return start(arguments, true, false);
  }
  /// With Ctrl-C already pressed when it begins.
  Outcome runInterrupted(const std::vector<std::string>& arguments) const {
    return start(arguments, false, true);
  }
  /// Whether this system lends us a terminal, which a bare chroot does not.
  static bool canHaveTerminal();
  /// A program that runs until it is told to end.
  class Running {
   public:
    Running(pid_t child, int output) : child_(child), output_(output) {}
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running();

    /// Waits for the next line of its standard output; empty at its end.
    std::string line() const;
    /// Stops the program as if it hung, and waits until it has stopped.
    void hang() const;
    /// Sends a signal, waits and tells the exit code, 128 more than the signal that killed it.
    int end(int signal);

   private:
    pid_t child_;
    int output_;
  };
  Running begin(const std::vector<std::string>& arguments) const;
  /// With standard input and error on a terminal, whose text is in `err`. `answer` is typed as soon as a
  /// question ends in "[y/N] "; `meanwhile` is called before that.
  Outcome runOnTerminal(const std::vector<std::string>& arguments, const std::string& answer = "",
                        const std::function<void()>& meanwhile = {}) const;

 private:
  Outcome start(const std::vector<std::string>& arguments, bool asNobody, bool interrupted) const;
  [[noreturn]] void become(const std::vector<std::string>& arguments) const;

  std::string executable_;
  int handle_;
  TemporaryFolder home_;
};

}  // namespace spacemint::support
