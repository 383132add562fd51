// What the tree answers: which folders changed, and their sizes.

#include "core/host/linux/journal/WatchedTree.h"

#include <algorithm>
#include <span>
#include <utility>

namespace spacemint {

namespace {

std::string fullPathOf(std::string_view folder, std::string_view name) {
  std::string path{folder};
  if (!path.empty() && !path.ends_with('/')) path += '/';
  return path += name;
}

}  // namespace

std::optional<JournalError> WatchedTree::checked() {
  if (!error_ && identityOf(parts_.root) != identity_) fail(JournalError::rootReplaced);
  return error_;
}

// Whether the test holds for the folder or for one above it.
template <class Test>
bool WatchedTree::isIn(Id id, Test test) const {
  while (id != FolderMap::none && !test(map_[id])) id = map_[id].parent;
  return id != FolderMap::none;
}

std::expected<FolderChanges, JournalError> WatchedTree::changes(std::uint64_t since) {
  if (const auto error = checked()) return std::unexpected(*error);
  const auto isTree = [&](const FolderMap::Record& record) {
    return record.treeChange > since || (record.flags & FolderMap::unknown) != 0;
  };
  FolderChanges found;
  map_.forEach([&](Id id, const FolderMap::Record& record) {
    const bool tree = isTree(record);
    if ((!tree && record.ownChange <= since) || isIn(record.parent, isTree)) return;
    if (found.directories.size() + found.trees.size() > answerLimit) return;
    const auto path = map_.relativePath(id);
    if (!path) return;  // moved out: the folder that it left is in the answer
    (tree ? found.trees : found.directories)
        .push_back(path->empty() ? parts_.root : fullPathOf(parts_.root, *path));
  });
  if (found.directories.size() + found.trees.size() > answerLimit) {
    return std::unexpected(JournalError::tooManyChanges);
  }
  return found;
}

std::expected<MeasuredChanges, JournalError> WatchedTree::measuredChanges(const JournalQuery& query) {
  if (const auto error = checked()) return std::unexpected(*error);
  std::erase_if(settlingUntil_, [&](const auto& each) { return map_.find(each.first) == FolderMap::none; });
  const auto folders = foldersToList(query.since, query.minNodeSize);
  MeasuredFiles files;
  for (const Id id : std::span{folders}.first(std::min(folders.size(), query.folderLimit))) {
    if (parts_.shouldStop && parts_.shouldStop()) return std::unexpected(JournalError::notRecording);
    measure(id, query.minNodeSize, files);
  }
  if (folders.size() > query.folderLimit) return std::unexpected(JournalError::tooManyChanges);
  auto answer = measuredAnswer(map_, query, std::move(files));
  if (!answer || answer->folders.size() > answerLimit) return std::unexpected(JournalError::tooManyChanges);
  return std::move(*answer);
}

// Folders whose size is not certain, and folders that changed and can have files that the answer names.
std::vector<WatchedTree::Id> WatchedTree::foldersToList(std::uint64_t since, Bytes minNodeSize) const {
  const auto isUnknown = [](const FolderMap::Record& record) {
    return (record.flags & FolderMap::unknown) != 0;
  };
  const auto isNew = [&](const FolderMap::Record& record) { return record.treeChange > since; };
  std::vector<Id> folders;
  std::size_t linked = 0;
  map_.forEach([&](Id id, const FolderMap::Record& record) {
    const bool isLinked = (record.flags & FolderMap::linked) != 0 && ++linked <= linkedLimit;
    constexpr unsigned state = FolderMap::measured | FolderMap::settling;
    const bool isCertain = (record.flags & state) == FolderMap::measured && !isLinked;
    const auto hasFiles = [&] {
      return record.ownFiles > 0 && static_cast<Bytes>(record.ownBytes) >= minNodeSize &&
             (record.ownChange > since || isIn(id, isNew));
    };
    if ((isCertain && !hasFiles()) || isIn(id, isUnknown) || !map_.isWithin(id, map_.root())) return;
    folders.push_back(id);
  });
  return folders;
}

// A folder that was listed after an event is listed again in every answer until its sizes have settled.
void WatchedTree::noteSettling(Id id, bool wasCertain) {
  const auto now = Clock::now();
  const FolderRef folder = map_.refTo(id);
  if (!wasCertain) settlingUntil_.insert_or_assign(folder, now + settlingTime);
  const auto until = settlingUntil_.find(folder);
  const bool settles = until != settlingUntil_.end() && now < until->second;
  map_[id].set(FolderMap::settling, settles);
  if (!settles && until != settlingUntil_.end()) settlingUntil_.erase(until);
}

void WatchedTree::measure(Id id, Bytes minNodeSize, MeasuredFiles& files) {
  const FileHandle folder = openVerified(id);
  if (!folder) {  // another folder is at its place
    touchPlaceOf(id);
    map_[id].set(FolderMap::stale, true);
    anyStale_ = true;
    return;
  }
  const FolderMap::Record before = map_[id];
  auto& large = files[id];
  list(id, folder, [&](const Entry& entry) {
    if (entry.type == EntryType::folder || entry.error != 0 || shareOf(entry) < minNodeSize) return;
    large.push_back({.name = std::string{entry.name}, .size = shareOf(entry), .modified = entry.modified});
  });
  noteSettling(id, (before.flags & FolderMap::measured) != 0);
  // No event reported this difference, so that other clients must hear of it now.
  if (before.own() != map_[id].own()) map_[id].ownChange = parts_.clock.stamp();
}

}  // namespace spacemint
