#pragma once

#include "Spacemint/command/Shell.h"
#include "core/analysis/ToolState.h"
#include "core/cleanup/CleanupPlan.h"

#include <optional>
#include <string>

namespace spacemint {

/// Runs the programs that know their own data best, such as docker, npm and git, and reads their answers.
/// Each call blocks until its program has ended or was stopped; any thread.
class ToolRuns {
 public:
  static constexpr Seconds cleanupTimeout{900};
  static constexpr Seconds statusTimeout{30};

  explicit ToolRuns(Shell shell) : shell_(std::move(shell)) {}

  /// Absent when the program cannot be found or started.
  std::optional<DevTools::ToolAnswer> ask(const DevTools::ToolQuery& query) const;

  /// Runs a program that cleans up; why it did not, or nothing.
  std::optional<CleanupFailure> clean(const ToolCommand& command,
                                      const CleanupContext::MayGoOn& mayGoOn = {}) const;

  /// How many files of a working tree git calls changed; absent where git could not be asked. No program that
  /// the repository names is started, and nothing in it is written.
  std::optional<int> uncommittedChanges(const std::string& workingTree) const;

  /// Lets clean-ups run their tools through this object, of which they get a copy.
  void serve(CleanupContext& context) const;

 private:
  Shell shell_;
};

}  // namespace spacemint
