#include "core/cleanup/Cleanup.h"

#include "core/base/AsciiText.h"
#include "core/tree/Paths.h"

#include <cerrno>
#include <filesystem>

namespace spacemint {

namespace {

// Numbers of `fileManagerErrorDomain`.
constexpr int readNoPermission = 257;
constexpr int writeNoPermission = 513;

CleanupFailure failureOf(const Error& error) {
  return Cleanup::isPermissionError(error) ? CleanupFailure::needsFullDiskAccess()
                                           : CleanupFailure::other(error.message);
}

std::string reasoned(const DeletionGuard& guard, std::string_view path, std::string_view reason) {
  return Paths::display(path, guard.home()) + " " + std::string{reason};
}

// The path without single "." and doubled "/", which the guard takes as they are.
std::string plainSpelling(std::string_view path) {
  std::string plain;
  for (const std::string_view name : pieces(path, '/')) {
    if (name != ".") (plain += '/') += name;
  }
  return plain.empty() ? "/" : plain;
}

RemovalTarget targetAt(std::string_view path, const DeletionGuard& guard,
                       const std::optional<FileIdentity>& identity) {
  return {.path = Paths::logical(path), .linksAllowedUpTo = guard.home(), .identity = identity};
}

std::optional<CleanupFailure> removeEntries(const Cleanup::DeleteContents& arguments,
                                            OpenedForRemoval& folder) {
  while (true) {
    const auto names = folder.nextNames();
    if (!names) return failureOf(names.error());
    if (names->empty()) return std::nullopt;
    for (const std::string& name : *names) {
      const std::string path = Paths::join(arguments.of, name);
      if (auto refused = Cleanup::refusal(arguments.guard, {path, true, true})) return refused;
      if (const auto removed = folder.remove(name); !removed) return failureOf(removed.error());
    }
  }
}

}  // namespace

std::optional<CleanupFailure> Cleanup::refusal(const DeletionGuard& guard,
                                               const DeletionGuard::Question& question) {
  auto reason = guard.check(question);
  if (!reason) {
    const std::string plain = plainSpelling(Paths::logical(question.path));
    if (plain != question.path) {
      reason = guard.check({plain, question.outsideHomeAllowed, question.linkItself});
    }
  }
  if (!reason) return std::nullopt;
  return CleanupFailure::refused(reasoned(guard, question.path, *reason));
}

std::optional<CleanupFailure> Cleanup::cacheRefusal(const DevTools::FoundCleanup& cache,
                                                    const DeletionGuard& guard) {
  const bool byTool = std::holds_alternative<CleanupTarget::Command>(cache.target->action);
  return refusal(guard, {.path = cache.path, .outsideHomeAllowed = byTool, .linkItself = byTool});
}

std::optional<CleanupFailure> Cleanup::deleteItem(const DeleteItem& arguments) {
  if (auto refused = refusal(arguments.guard, {.path = arguments.path})) return refused;
  const auto removed =
      arguments.fileManager.remove(targetAt(arguments.path, arguments.guard, arguments.identity));
  if (!removed) return failureOf(removed.error());
  return std::nullopt;
}

std::optional<CleanupFailure> Cleanup::deleteContents(const DeleteContents& arguments) {
  std::error_code failure;
  if (std::filesystem::is_symlink(std::filesystem::symlink_status(arguments.of, failure))) {
    return CleanupFailure::refused(reasoned(arguments.guard, arguments.of, "is a symbolic link"));
  }
  if (!Paths::logical(arguments.of).starts_with('/')) {
    return CleanupFailure::refused("not an absolute path");
  }
  const auto folder = arguments.fileManager.open(targetAt(arguments.of, arguments.guard, arguments.identity));
  if (!folder) return failureOf(folder.error());
  return removeEntries(arguments, **folder);
}

std::optional<CleanupFailure> Cleanup::emptyCache(const DeleteContents& arguments) {
  if (auto refused = refusal(arguments.guard, {.path = arguments.of})) return refused;
  return deleteContents(arguments);
}

std::optional<CleanupFailure> Cleanup::mountRefusal(const std::string& folder, const DeletionGuard& guard) {
  const auto mount = mountedIn(folder);
  if (!mount) return std::nullopt;
  return CleanupFailure::refused(reasoned(
      guard, folder, "has something else mounted in it, at " + Paths::display(*mount, guard.home())));
}

Cleanup::WorktreeRemoval Cleanup::worktreeRemoval(const GitWorktree& worktree,
                                                  std::optional<int> uncommittedChanges) {
  if (!worktree.repositoryPath || worktree.isOrphaned) return DeleteFolder{worktree.path};
  std::vector<std::string> arguments(safeGitOptions.begin(), safeGitOptions.end());
  arguments.insert(arguments.end(), {"-C", *worktree.repositoryPath, "worktree", "remove"});
  if (uncommittedChanges.value_or(0) >= 1) arguments.emplace_back("--force");
  arguments.push_back(worktree.path);
  return RunGit{std::move(arguments)};
}

bool Cleanup::isPermissionError(const Error& error) {
  for (const Error* at = &error; at != nullptr; at = at->underlying.get()) {
    if (at->domain == fileManagerErrorDomain &&
        (at->code == readNoPermission || at->code == writeNoPermission)) {
      return true;
    }
    if (at->isSystem(EPERM) || at->isSystem(EACCES)) return true;
  }
  return false;
}

}  // namespace spacemint
