#pragma once

#include "Spacemint/command/Shell.h"
#include "core/analysis/ToolState.h"
#include "core/cleanup/CleanupPlan.h"

#include <optional>
#include <string>

namespace spacemint {

/// Runs tools such as docker, npm and git and reads their output. Each call blocks until the tool ends or is
/// stopped; any thread.
class ToolRuns {
 public:
  static constexpr Seconds cleanupTimeout{900};
  static constexpr Seconds statusTimeout{30};

  explicit ToolRuns(Shell shell) : shell_(std::move(shell)) {}

  /// Runs a query and returns the tool's answer; absent if the tool cannot be found or started.
  std::optional<DevTools::ToolAnswer> ask(const DevTools::ToolQuery& query) const;

  /// Runs a clean-up command. Returns the failure, or nothing on success.
  std::optional<CleanupFailure> clean(const ToolCommand& command,
                                      const CleanupContext::MayGoOn& mayGoOn = {}) const;

  /// The number of files in a working tree that git reports as changed; absent if git failed. Starts no
  /// programs from the repository's configuration and writes nothing to the repository.
  std::optional<int> uncommittedChanges(const std::string& workingTree) const;

  /// Sets the functions of `context` that run tools; they use a copy of this object.
  void serve(CleanupContext& context) const;

 private:
  Shell shell_;
};

}  // namespace spacemint
