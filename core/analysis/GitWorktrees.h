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
  /// The folder as a path of the file system.
  std::string path;
  Bytes size = 0;
  /// Name of the main repository's folder.
  std::optional<std::string> repository;
  /// The folder that holds the main repository's ".git".
  std::optional<std::string> repositoryPath;
  /// The branch that is checked out, or the first seven characters of a detached commit.
  std::optional<std::string> branch;
  /// The latest change of the worktree's HEAD or index.
  std::optional<Date> lastUsed;
  /// The repository knows nothing of the worktree any more, or is gone itself.
  bool isOrphaned = false;

  const std::string& id() const { return path; }
  std::string name() const { return Paths::lastComponent(path); }
  /// True for an orphan, and for what was last used more than `after` days before `now`.
  bool isOld(Date now, double after) const;

  bool operator==(const GitWorktree&) const = default;
};

/// Linked worktrees, found in a scan and understood from git's own files, of which at most a few kilobytes
/// each are read. No program is started.
namespace GitWorktrees {

/// A worktree that was not used for so long is pointed at.
inline constexpr double staleDays = 30;

/// The worktree in the folder at `path`; absent when it is none, when its repository belongs to another copy
/// of it, or when what it says cannot be read.
std::optional<GitWorktree> inspect(const std::string& path, Bytes size);

struct FindArguments {
  const Snapshot& in;
  Bytes minimum = 0;
  std::function<std::optional<GitWorktree>(const std::string& path, Bytes size)> inspect =
      GitWorktrees::inspect;
};

/// The worktrees of at least `minimum` bytes, largest first. Those inside another worktree are not looked
/// for.
std::vector<GitWorktree> find(const FindArguments& arguments);

/// Other repositories and worktrees below the folder at `path`, as paths relative to it. Removing the folder
/// removes them too. Symbolic links are not followed. Fails with an errno where a folder cannot be listed for
/// another reason than a missing right.
std::expected<std::vector<std::string>, int> nestedIn(const std::string& path);

/// The administrative folder that the text of a file ".git" names, for the worktree at `relativeTo`.
std::optional<std::string> parseGitdir(std::string_view text, std::string_view relativeTo);

/// The branch that the text of a file HEAD names, or the first seven characters of a commit.
std::optional<std::string> parseBranch(std::string_view text);

}  // namespace GitWorktrees

}  // namespace spacemint
