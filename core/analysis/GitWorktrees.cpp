#include "core/analysis/GitWorktrees.h"

#include "core/analysis/Age.h"
#include "core/base/AsciiText.h"
#include "core/host/AtomicFile.h"
#include "core/host/FileStamp.h"
#include "core/host/VolumeInfo.h"
#include "core/tree/TreeWalk.h"

#include <algorithm>
#include <filesystem>

namespace spacemint {

namespace {

namespace fs = std::filesystem;

// Every file that this code reads holds one line with one path or name. Sizes in bytes.
constexpr std::size_t fileLimit = 16'384;

// True for a path of the form REPOSITORY/.git/worktrees/NAME, git's administrative folder of a worktree.
bool isWorktreeFolder(const fs::path& administrative) {
  const fs::path worktrees = administrative.parent_path();
  return administrative.has_filename() && worktrees.filename() == "worktrees" &&
         worktrees.parent_path().filename() == ".git";
}

std::optional<std::string> fileText(const fs::path& path) {
  auto text = readFile(path.string(), fileLimit);
  return text ? std::optional{std::move(*text)} : std::nullopt;
}

// The path written in one of git's files, resolved against the file's folder.
std::optional<fs::path> namedPath(const fs::path& file) {
  const auto text = fileText(file);
  if (!text || trimmed(*text).empty()) return std::nullopt;
  return file.parent_path() / trimmed(*text);
}

// The path without symbolic links, "." and "..". The part of the path that does not exist is kept as it is.
std::optional<fs::path> resolved(const fs::path& path) {
  if (mayHang(path.string())) return std::nullopt;
  std::error_code failure;
  fs::path result = fs::weakly_canonical(path, failure);
  return failure ? std::nullopt : std::optional{std::move(result)};
}

bool leadToTheSame(const std::optional<fs::path>& a, const fs::path& b) {
  if (!a) return false;
  const auto left = resolved(*a);
  return left && left == resolved(b);
}

// False on an error: a worktree counts as orphaned only if its repository is known to be gone.
bool isGone(const fs::path& path) {
  std::error_code failure;
  return fs::status(path, failure).type() == fs::file_type::not_found;
}

std::optional<Date> lastChange(const fs::path& administrative) {
  std::optional<Date> latest;
  for (const char* name : {"HEAD", "index"}) {
    const auto modified = fileStamp((administrative / name).string()).modified();
    if (modified && (!latest || *modified > *latest)) latest = modified;
  }
  return latest;
}

}  // namespace

bool GitWorktree::isOld(Date now, double after) const {
  return isOrphaned || (lastUsed && isOlder(*lastUsed, now, after));
}

std::vector<GitWorktree> GitWorktrees::find(const FindArguments& arguments) {
  std::vector<GitWorktree> worktrees;
  walkTree(arguments.in.root, [&](const std::string& path, const Node& node) {
    if (&node == &arguments.in.root || !node.isDirectory || !node.isWorktree) return node.isDirectory;
    if (node.size >= arguments.minimum) {
      auto worktree = arguments.inspect(Paths::logical(path), node.size);
      if (worktree) worktrees.push_back(std::move(*worktree));
    }
    return false;
  });
  std::ranges::stable_sort(worktrees, std::greater{}, &GitWorktree::size);
  return worktrees;
}

std::optional<GitWorktree> GitWorktrees::inspect(const std::string& path, Bytes size) {
  const fs::path gitFile = fs::path{path} / ".git";
  const auto text = fileText(gitFile);
  const auto gitdir = text ? parseGitdir(*text, path) : std::nullopt;
  if (!gitdir) return std::nullopt;
  const fs::path administrative{Paths::withoutTrailingSlash(*gitdir)};
  if (!isWorktreeFolder(administrative) || mayHang(administrative.string())) return std::nullopt;

  GitWorktree worktree{.path = path, .size = size};
  if (isGone(administrative)) {
    worktree.isOrphaned = true;
    return worktree;
  }
  // A copied worktree refers to the original's administrative folder, which does not refer back to the copy.
  if (!leadToTheSame(namedPath(administrative / "gitdir"), gitFile)) return std::nullopt;
  const fs::path repository = administrative.parent_path().parent_path();
  if (!leadToTheSame(namedPath(administrative / "commondir"), repository)) return std::nullopt;

  worktree.repositoryPath = repository.parent_path().string();
  worktree.repository = Paths::lastComponent(*worktree.repositoryPath);
  if (const auto head = fileText(administrative / "HEAD")) worktree.branch = parseBranch(*head);
  worktree.lastUsed = lastChange(administrative);
  return worktree;
}

std::expected<std::vector<std::string>, int> GitWorktrees::nestedIn(const std::string& path) {
  std::vector<std::string> found;
  std::error_code failure;
  constexpr auto skipClosed = fs::directory_options::skip_permission_denied;
  for (fs::recursive_directory_iterator at(path, skipClosed, failure), end; !failure && at != end;
       at.increment(failure)) {
    if (at->path().filename() != ".git") continue;
    // A ".git" folder contains no working trees.
    at.disable_recursion_pending();
    if (at.depth() > 0) found.push_back(at->path().parent_path().string().substr(path.size() + 1));
  }
  if (failure) return std::unexpected(failure.value());
  std::ranges::sort(found);
  return found;
}

std::optional<std::string> GitWorktrees::parseGitdir(std::string_view text, std::string_view relativeTo) {
  constexpr std::string_view key = "gitdir:";
  const auto all = lines(text);
  const auto line = std::ranges::find_if(all, [&](std::string_view each) { return each.starts_with(key); });
  if (line == all.end()) return std::nullopt;
  const std::string_view path = trimmed(line->substr(key.size()));
  if (path.empty()) return std::nullopt;
  if (path.starts_with('/')) return std::string{path};
  const std::string joined = (fs::path{relativeTo} / path).lexically_normal().string();
  return std::string{Paths::withoutTrailingSlash(joined)};
}

std::optional<std::string> GitWorktrees::parseBranch(std::string_view text) {
  constexpr std::string_view branches = "ref: refs/heads/";
  constexpr std::size_t shortCommit = 7;
  text = trimmed(text);
  if (text.starts_with(branches)) return std::string{text.substr(branches.size())};
  if (text.size() < shortCommit || text.starts_with("ref:")) return std::nullopt;
  return std::string{text.substr(0, shortCommit)};
}

}  // namespace spacemint
