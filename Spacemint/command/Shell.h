#pragma once

#include "Spacemint/command/ProgramPath.h"
#include "core/base/Date.h"

#include <cstdint>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// Starts other programs. No other code does.
///
/// A program gets an empty standard input, pipes for its two outputs and no other file descriptors. It leads
/// its own process group; at the timeout the whole group is stopped. Any thread; several programs may run at
/// the same time.
class Shell {
 public:
  struct Output {
    /// The exit code, or 128 plus the number of the signal that ended the program.
    std::int32_t status = 0;
    /// Standard output and standard error, with U+FFFD in place of invalid UTF-8.
    std::string output;
    std::string error;
    /// True if the program was stopped, because of the timeout or because `mayGoOn` returned false.
    bool timedOut = false;

    bool operator==(const Output&) const = default;
  };

  /// Called several times a second while a program runs; false stops the program like a timeout.
  using MayGoOn = std::function<bool()>;

  struct Run {
    /// A name to look up on the search path, or an absolute path.
    std::string program;
    std::vector<std::string> arguments;
    Seconds timeout{0};
    /// Environment variables to set. Variables whose names differ only in letter case are removed.
    std::map<std::string, std::string> environment = {};
    MayGoOn mayGoOn = {};
  };

  struct Execution {
    std::string path;
    std::vector<std::string> arguments;
    std::map<std::string, std::string> environment;
    Seconds timeout{0};
    MayGoOn mayGoOn = {};
  };

  /// The time between SIGTERM and SIGKILL when a program is stopped.
  static constexpr std::chrono::seconds grace{2};

  /// A shell with the search path for the user of this process.
  Shell();
  explicit Shell(ProgramPlaces places);
  /// Looks for programs only in these folders.
  explicit Shell(std::vector<std::string> searchPath);

  /// The folders in which programs are looked up. Determined on first use and then kept, so only a new shell
  /// finds tools in folders that appear later.
  const std::vector<std::string>& searchPath() const;

  /// The full path of a program; absent if no executable file of that name is found.
  std::optional<std::string> which(const std::string& name) const;

  /// Runs a program on its own thread. The program gets this process's environment with `PATH` set to the
  /// search path, and without variables such as GIT_DIR, which would direct git to another repository. The
  /// result is absent if the program cannot be found or started. The future may be dropped; the program then
  /// runs to its end.
  std::future<std::optional<Output>> run(Run run) const;

  /// Runs a program and waits until it ends, at most `timeout` plus `grace`. Absent if the program cannot be
  /// started.
  static std::optional<Output> execute(const Execution& execution);

 private:
  struct Search;

  std::shared_ptr<Search> search_;
};

}  // namespace spacemint
