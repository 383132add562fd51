#pragma once

#include "core/base/Error.h"
#include "core/cleanup/CleanupPlan.h"
#include "spacemintctl/Answer.h"

#include <expected>
#include <string>
#include <vector>

namespace spacemint::ctl {

struct CleanOptions {
  /// The item to remove, for the kinds `backup` and `worktree`.
  std::string path;
  /// The items to remove, for the kind `path`.
  std::vector<std::string> paths;
  /// The ids of the caches to clean; empty for all large caches.
  std::vector<std::string> ids;
  /// Do not ask for confirmation.
  bool yes = false;
  /// Only show what would be done.
  bool dryRun = false;
  bool json = false;
};

enum class CleanKind { caches, trash, backup, worktree, path };

/// Shows what will be removed, asks for confirmation, removes it and prints the result. Returns the exit
/// code.
int runClean(CleanKind kind, const CleanOptions& options);

/// What clean-ups of this user need: the guard, the tools, the free space. Has no Trash.
CleanupContext cleanupContext(const Wording& wording);

/// Measures `paths` again and updates the newest scan of the history that the application shows, if there is
/// one and it holds them. Blocks; any thread.
std::expected<void, Error> remeasureInNewestScan(const std::vector<std::string>& paths);

}  // namespace spacemint::ctl
