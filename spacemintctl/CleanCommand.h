#pragma once

#include <string>
#include <vector>

namespace spacemint::ctl {

struct CleanOptions {
  /// What to remove, for what is named by its path.
  std::string path;
  /// Which caches; empty for all large ones.
  std::vector<std::string> ids;
  /// Do it without asking.
  bool yes = false;
  /// Show what would be done and do nothing.
  bool dryRun = false;
  bool json = false;
};

enum class CleanKind { caches, trash, backup, worktree, path };

/// Shows what will be removed, asks, removes it, and says what came of it.
int runClean(CleanKind kind, const CleanOptions& options);

}  // namespace spacemint::ctl
