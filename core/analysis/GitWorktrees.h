#pragma once

#include "core/tree/Snapshot.h"

#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// A linked worktree of a git repository.
struct GitWorktree {
  /// The worktree's folder, as a path on the file system.
  std::string path;
  Bytes size = 0;
  /// The name of the main repository's folder.
  std::optional<std::string> repository;
  /// The path of the main repository's folder, which contains ".git".
  std::optional<std::string> repositoryPath;
  /// The checked-out branch, or the first seven characters of the commit if HEAD is detached.
  std::optional<std::string> branch;
  /// When the worktree's HEAD or index last changed, whichever is later.
  std::optional<Date> lastUsed;
  /// True if the repository has no entry for this worktree any more, or is gone itself.
  bool isOrphaned = false;

  const std::string& id() const { return path; }
  std::string name() const { return Paths::lastComponent(path); }
  /// True if the worktree is orphaned or was last used more than `after` days before `now`.
  bool isOld(Date now, double after) const;

  bool operator==(const GitWorktree&) const = default;
};

/// Finds linked worktrees in a scan and reads git's own files about them, at most 16 KB each. Starts no
/// program. The functions that take a path block for disk reads; any thread.
namespace GitWorktrees {

/// A worktree that was not used for this number of days is shown as old.
inline constexpr double staleDays = 30;

/// The worktree in the folder `path`. Absent if the folder is no linked worktree, if the repository's entry
/// refers to another copy of the worktree, or if git's files cannot be read. `size` is copied to the result.
std::optional<GitWorktree> inspect(const std::string& path, Bytes size);

struct FindArguments {
  const Snapshot& in;
  Bytes minimum = 0;
  std::function<std::optional<GitWorktree>(const std::string& path, Bytes size)> inspect =
      GitWorktrees::inspect;
};

/// The worktrees of at least `minimum` bytes in a scan, largest first. Does not look inside a worktree for
/// others.
std::vector<GitWorktree> find(const FindArguments& arguments);

/// Repositories and worktrees below the folder `path`, as paths relative to the folder. Removing the folder
/// would remove them too. Does not follow symbolic links. Skips folders that it has no permission to list;
/// fails with an errno if listing fails for another reason.
std::expected<std::vector<std::string>, int> nestedIn(const std::string& path);

/// The administrative folder that a file ".git" refers to. `text` is the file's content, `relativeTo` the
/// worktree's folder. Absent if the text has no such line.
std::optional<std::string> parseGitdir(std::string_view text, std::string_view relativeTo);

/// The branch that a file HEAD refers to, or the first seven characters of a commit. `text` is the file's
/// content. Absent for any other text.
std::optional<std::string> parseBranch(std::string_view text);

}  // namespace GitWorktrees

}  // namespace spacemint
