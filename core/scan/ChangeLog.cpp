#include "core/scan/ChangeLog.h"

#include "core/base/Unicode.h"
#include "core/tree/Paths.h"

#include <algorithm>
#include <memory>
#include <optional>

namespace spacemint {

namespace {

using PathSet = std::unordered_set<std::string>;

// The folder that holds `path`; absent at the top, and above `rootLength` characters.
std::optional<std::string> parentOf(const std::string& path, std::size_t rootLength) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos || slash == 0 || slash < rootLength) return std::nullopt;
  return path.substr(0, slash);
}

PathSet treeForm(const std::vector<std::string>& paths, const std::string& root) {
  const bool onDataVolume = canonicalPrefixLength(root, Paths::dataVolume).has_value();
  PathSet result;
  for (const std::string& given : paths) {
    std::string path{Paths::withoutTrailingSlash(given)};
    if (onDataVolume && !canonicalPrefixLength(path, root) &&
        !canonicalPrefixLength(path, Paths::dataVolume)) {
      path.insert(0, Paths::dataVolume);
    }
    result.insert(std::move(path));
  }
  return result;
}

// What a walk must look at: every changed folder, and those on the way to it.
PathSet dirtyFolders(const ChangeLog::Changes& changes, std::size_t rootLength) {
  PathSet dirty;
  for (const PathSet* paths : {&changes.directories, &changes.trees}) {
    for (const std::string& changed : *paths) {
      if (changed.size() < rootLength) continue;
      std::optional<std::string> path = changed;
      while (path && dirty.insert(*path).second) path = parentOf(*path, rootLength);
    }
  }
  return dirty;
}

// What stands for bytes that are not UTF-8 in a stored name.
constexpr std::string_view replacement = "\ufffd";

// The node at `path` by its very bytes: names that only look alike may be two folders, one of which was not
// kept.
const Node* nodeSpelled(const Snapshot& snapshot, std::string_view path) {
  const std::string prefix = Paths::join(snapshot.rootPath(), "");
  if (!path.starts_with(prefix) || path.contains(replacement)) return nullptr;
  path.remove_prefix(prefix.size());
  const Node* node = &snapshot.root;
  while (node != nullptr && !path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    const auto child = std::ranges::find(node->children, path.substr(0, end), &Node::name);
    node = child != node->children.end() ? &*child : nullptr;
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return node;
}

struct Plan {
  Snapshot previous;
  PathSet trees;
  PathSet dirty;
  bool everything = false;

  bool isInChangedTree(const std::string& folder) const {
    if (everything || trees.empty()) return everything;
    std::optional<std::string> path = folder;
    while (path && !trees.contains(*path)) path = parentOf(*path, previous.rootPath().size());
    return path.has_value();
  }
};

}  // namespace

std::expected<ChangeLog::Changes, JournalAbsence> ChangeLog::changes(const Question& question) const {
  if (question.since == 0) return std::unexpected(JournalAbsence::notRecording);
  const auto found =
      journal_.changes({.since = question.since, .root = question.under, .timeout = question.timeout});
  if (!found) return std::unexpected(found.error());
  return Changes{.directories = treeForm(found->directories, question.under),
                 .trees = treeForm(found->trees, question.under)};
}

DiskScanner::Reuse ChangeLog::reuse(Snapshot previous, Changes changes) {
  auto dirty = dirtyFolders(changes, previous.rootPath().size());
  const bool everything =
      changes.trees.contains(std::string{Paths::withoutTrailingSlash(previous.rootPath())});
  const auto plan = std::make_shared<const Plan>(std::move(previous), std::move(changes.trees),
                                                 std::move(dirty), everything);
  return [plan](const std::string& path) -> std::optional<Node> {
    if (plan->dirty.contains(path) || plan->isInChangedTree(path)) return std::nullopt;
    const Node* node = nodeSpelled(plan->previous, path);
    if (node == nullptr || !node->isDirectory || node->fileCount < 1) return std::nullopt;
    return *node;
  };
}

}  // namespace spacemint
