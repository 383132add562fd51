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

/// Starts other programs. The one place that does.
///
/// A program gets no input and no descriptor but its two outputs, and leads a process group of its own, which
/// is stopped as a whole when it runs too long. Nothing is said about what it prints. Any thread; runs do not
/// disturb one another.
class Shell {
 public:
  struct Output {
    /// The exit code, or 128 and the number of the signal that ended the program.
    std::int32_t status = 0;
    /// What it wrote, with U+FFFD in the place of what is not UTF-8.
    std::string output;
    std::string error;
    /// It ran too long, or `mayGoOn` said no, and it was stopped.
    bool timedOut = false;

    bool operator==(const Output&) const = default;
  };

  /// Asked several times a second while a program runs; false stops it as if its time were over.
  using MayGoOn = std::function<bool()>;

  struct Run {
    /// A name that is searched for, or an absolute path.
    std::string program;
    std::vector<std::string> arguments;
    Seconds timeout{0};
    /// Variables to set. Others that differ from one of them in letter case only are dropped.
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

  /// How long a program that was asked to end may take before it is killed.
  static constexpr std::chrono::seconds grace{2};

  /// The shell of the user of this process.
  Shell();
  explicit Shell(ProgramPlaces places);
  /// Looks for programs in these folders and nowhere else.
  explicit Shell(std::vector<std::string> searchPath);

  /// The folders that are searched, worked out on first use and kept: a tool installed later is found by the
  /// next shell.
  const std::vector<std::string>& searchPath() const;

  /// The full path of a program; absent when none of that name can be executed.
  std::optional<std::string> which(const std::string& name) const;

  /// Runs a program on a thread of its own, in this process's environment with `PATH` as searched here and
  /// without the variables of git (GIT_DIR and the like), which would lead git to another repository.
  /// Absent when it cannot be found or started. The future may be dropped; the run then ends by itself.
  std::future<std::optional<Output>> run(Run run) const;

  /// Runs a program and waits for it, for no more than the timeout and the grace. Absent when it cannot be
  /// started.
  static std::optional<Output> execute(const Execution& execution);

 private:
  struct Search;

  std::shared_ptr<Search> search_;
};

}  // namespace spacemint
