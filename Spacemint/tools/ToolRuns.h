#pragma once

#include "Spacemint/command/Shell.h"
#include "core/analysis/ToolState.h"
#include "core/cleanup/CleanupFailure.h"

#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// Other programs that know better what to do than we: what they are asked and told, and what their answers
/// mean. Each blocks until its program has ended or was stopped; any thread.
class ToolRuns {
 public:
  static constexpr Seconds cleanupTimeout{900};
  static constexpr Seconds statusTimeout{30};
  static constexpr Seconds trashTimeout{600};

  explicit ToolRuns(Shell shell) : shell_(std::move(shell)) {}

  /// Absent when the program cannot be found or started.
  std::optional<DevTools::ToolAnswer> ask(const DevTools::ToolQuery& query) const;

  /// Runs a program that cleans up; why it did not, or nothing.
  std::optional<CleanupFailure> clean(const std::string& program, std::vector<std::string> arguments) const;

  /// Runs git, with nothing of a repository's own settings that starts programs.
  std::optional<CleanupFailure> git(std::vector<std::string> arguments) const;

  /// How many files of a worktree git calls changed; absent where it could not be asked.
  std::optional<int> uncommittedChanges(const std::string& worktree) const;

  /// Has the desktop's file manager empty the Trash.
  std::optional<CleanupFailure> emptyTrash() const;

 private:
  Shell shell_;
};

}  // namespace spacemint
