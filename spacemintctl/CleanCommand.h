#pragma once

#include <string>
#include <vector>

namespace spacemint::ctl {

struct CleanOptions {
  /// The item to remove, for the kinds `backup`, `worktree` and `path`.
  std::string path;
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

}  // namespace spacemint::ctl
