#pragma once

#include "core/analysis/DevTools.h"
#include "core/analysis/GitWorktrees.h"
#include "core/cleanup/CleanupFailure.h"
#include "core/cleanup/DeletionGuard.h"
#include "core/host/Removal.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace spacemint {

/// The operations that remove data, for good. Each path passes the guard first. They keep no state, block for
/// as long as the removal takes, and what is gone when they fail stays gone.
namespace Cleanup {

/// Domain of errors that come from a file manager with numbers of its own.
inline constexpr std::string_view fileManagerErrorDomain = "NSCocoaErrorDomain";

/// The first arguments of every run of git: it starts no file-system monitor and runs no hook of a
/// repository.
inline constexpr std::array<std::string_view, 4> safeGitOptions{"-c", "core.fsmonitor=false", "-c",
                                                                "core.hooksPath=/dev/null"};

/// Why nothing may be removed at a path, as a complete message; absent when it may. The guard is asked about
/// the path as it is written and as the system will read it, so that no spelling of a protected folder gets
/// through.
std::optional<CleanupFailure> refusal(const DeletionGuard& guard, const DeletionGuard::Question& question);

/// The same for a cache, which an environment variable may have moved to any folder. One that is emptied must
/// lie in the home folder and be no link; a tool may also clean one elsewhere, but no protected folder, for
/// some tools remove all that they find there.
std::optional<CleanupFailure> cacheRefusal(const DevTools::FoundCleanup& cache, const DeletionGuard& guard);

struct DeleteItem {
  std::string path;
  const DeletionGuard& guard;
  Removal& fileManager;
  /// What was confirmed; another item at the path is left alone. Absent to take what is there.
  std::optional<FileIdentity> identity = {};
};

/// Removes one item with all that is in it. It must lie in the home folder and be no symbolic link.
std::optional<CleanupFailure> deleteItem(const DeleteItem& arguments);

struct DeleteContents {
  /// The folder to empty; it stays itself.
  std::string of;
  const DeletionGuard& guard;
  Removal& fileManager;
  std::optional<FileIdentity> identity = {};
};

/// Removes every entry of a folder, in listing order, and stops at the first that is refused or fails. Links
/// among them are removed as links. The folder itself may be a protected one, as the Trash is.
std::optional<CleanupFailure> deleteContents(const DeleteContents& arguments);

/// The same for a folder that could as well be removed itself: in the home folder, not protected, no link.
std::optional<CleanupFailure> emptyCache(const DeleteContents& arguments);

/// Why no other program may be let remove a folder: something is mounted in it, and it is not known to stop
/// there, as git does not. Absent when nothing is.
std::optional<CleanupFailure> mountRefusal(const std::string& folder, const DeletionGuard& guard);

/// How a git worktree is to be removed.
struct RunGit {
  std::vector<std::string> arguments;
  bool operator==(const RunGit&) const = default;
};
struct DeleteFolder {
  std::string path;
  bool operator==(const DeleteFolder&) const = default;
};
using WorktreeRemoval = std::variant<RunGit, DeleteFolder>;

/// Git removes the worktrees that it knows: by force only where `uncommittedChanges` were counted and there
/// are some, so that where they could not be counted git itself refuses to lose any. The folder of an orphan
/// is deleted.
WorktreeRemoval worktreeRemoval(const GitWorktree& worktree, std::optional<int> uncommittedChanges);

/// Whether the error, or one that it rests on, says that the right to do it is missing.
bool isPermissionError(const Error& error);

}  // namespace Cleanup

}  // namespace spacemint
