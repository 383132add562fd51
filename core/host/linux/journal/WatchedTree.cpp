#include "core/host/linux/journal/WatchedTree.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/syscall.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <utility>

namespace spacemint {

namespace {

// Places that wait to be looked at while events pour in.
constexpr std::size_t placeLimit = 20'000;
constexpr int passes = 3;

constexpr std::uint32_t comingsAndGoings = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;

bool isGone(int error) {
  return error == ENOENT || error == ENOTDIR || error == ELOOP || error == EXDEV;
}

bool isForbidden(int error) {
  return error == EACCES || error == EPERM || error == ENOSPC;
}

bool isFullyReadable(const FileHandle& folder) {
  return faccessat(folder.get(), ".", R_OK | X_OK, AT_EACCESS) == 0;
}

// The names in an open folder that may be folders'; false when it could not be listed to its end.
bool listSubfolders(const FileHandle& folder, std::vector<std::string>& names) {
  alignas(dirent64) std::array<char, 32'768> buffer;
  for (;;) {
    const long length = syscall(SYS_getdents64, folder.get(), buffer.data(), buffer.size());
    if (length <= 0) return length == 0;
    for (long at = 0; at < length;) {
      const auto* entry = reinterpret_cast<const dirent64*>(buffer.data() + at);
      at += entry->d_reclen;
      const std::string_view name = entry->d_name;
      if (entry->d_type != DT_DIR && entry->d_type != DT_UNKNOWN) continue;
      if (name != "." && name != "..") names.emplace_back(name);
    }
  }
}

std::string joined(std::string_view folder, std::string_view name) {
  std::string path{folder};
  if (!path.empty() && !path.ends_with('/')) path += '/';
  return path += name;
}

}  // namespace

std::optional<WatchedTree::Identity> WatchedTree::identityOf(const std::string& path) {
  const FileHandle handle{open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)};
  if (!handle) return std::nullopt;
  const auto facts = factsOf(handle);
  if (!facts) return std::nullopt;
  return Identity{facts->inode, facts->mounted};
}

void WatchedTree::forget() {
  map_.reset();
  places_.clear();
  settleAt_ = placeLimit;
  away_.clear();
  anyStale_ = hitWatchLimit_ = expectsWatches_ = mountsMayHaveChanged_ = false;
  loss_ = JournalAbsence::settingUp;
}

std::expected<void, JournalAbsence> WatchedTree::begin(const FileHandle& root) {
  loss_.reset();
  const auto identity = identityOf(pathThroughHandle(root));
  mounts_ = MountPoints{realPathOf(root)};
  const auto begun = parts_.queue.begin(root);
  watchLimit_ = parts_.watchLimit != 0 ? parts_.watchLimit : parts_.queue.watchLimit();
  const auto watched = accept(begun);
  if (!identity || !watched) {
    lose(JournalAbsence::failed);
    return std::unexpected(*loss_);
  }
  identity_ = *identity;
  map_.setWatch(map_.root(), *watched);
  rewindFolder(root);
  return {};
}

void WatchedTree::walkFromRoot(FileHandle root) {
  walk(map_.root(), std::move(root));
}

void WatchedTree::lose(JournalAbsence reason) {
  if (!loss_ || loss_ == JournalAbsence::settingUp) loss_ = reason;
}

// A watch that is new to us and one too many is taken back: what is watched already stays so at the limit.
std::expected<int, int> WatchedTree::accept(std::expected<int, int> added) {
  // During a scan the same folder may be tried twice: what was refused once must not be taken the next time.
  const bool isFull = map_.watches() >= watchLimit_ || (expectsWatches_ && hitWatchLimit_);
  if (!added || !isFull || map_.withWatch(*added) != FolderMap::none) {
    if (!added && added.error() == ENOSPC) hitWatchLimit_ = true;
    return added;
  }
  parts_.queue.unwatch(*added);
  hitWatchLimit_ = true;
  return std::unexpected(ENOSPC);
}

// What a scan tells on its way may be past by now: another folder may have the name. Where that is so, the
// places are looked at later.
WatchedTree::Seen WatchedTree::adopt(Seen parentSeen, std::string_view name, std::expected<int, int> added) {
  const Id parent = map_.find({parentSeen.id, parentSeen.generation});
  if (loss_ || parent == FolderMap::none) return {};
  const auto watched = accept(added);
  if (!watched) {
    closeOff(parent, name);
    return {};
  }
  const Id known = map_.child(parent, name);
  Id id = map_.withWatch(*watched);
  if (id == FolderMap::none) {
    if (known != FolderMap::none) {
      touch(parent, name);
      putAway(known);
    }
    id = map_.add(parent, name);
    map_.setWatch(id, *watched);
  } else if (id != known) {
    touchPlaceOf(id);
    touch(parent, name);
  }
  return {id, map_[id].generation};
}

void WatchedTree::adoptClosed(Seen parentSeen, std::string_view name) {
  const Id parent = map_.find({parentSeen.id, parentSeen.generation});
  if (!loss_ && parent != FolderMap::none) closeOff(parent, name);
}

void WatchedTree::adoptUnlisted(Seen folder) {
  const Id id = map_.find({folder.id, folder.generation});
  if (!loss_ && id != FolderMap::none) map_[id].flags |= FolderMap::unreadable;
}

void WatchedTree::handle(const FolderEvent& event) {
  if (loss_) return;
  if (places_.size() >= settleAt_) {
    settle(Clock::now());
    settleAt_ = places_.size() + placeLimit;
  }
  if ((event.what & IN_Q_OVERFLOW) != 0) {
    if (parts_.rules.noticesLoss) lose(JournalAbsence::eventsLost);
    return;
  }
  const Id id = map_.withWatch(event.watch);
  if (id == FolderMap::none) {
    if ((event.what & IN_IGNORED) == 0 && !expectsWatches_) parts_.queue.unwatch(event.watch);
  } else if ((event.what & IN_UNMOUNT) != 0) {
    lose(JournalAbsence::unmounted);
  } else if ((event.what & IN_IGNORED) != 0) {
    touchPlaceOf(id);
    map_.dropWatch(id);
    if (id == map_.root()) lose(JournalAbsence::rootReplaced);
  } else if ((event.what & (IN_DELETE_SELF | IN_MOVE_SELF)) != 0) {
    if (id == map_.root()) lose(JournalAbsence::rootReplaced);
  } else {
    markOwn(id);
    if ((event.what & IN_ISDIR) == 0) return;
    if (event.name.empty()) return touchPlaceOf(id);  // it may have become readable or unreadable
    if ((event.what & comingsAndGoings) != 0) markReplaced(id, event.name);
    touch(id, event.name);
  }
}

void WatchedTree::touch(Id parent, std::string_view name) {
  if (!parts_.rules.looksAtKnownPlaces && map_.child(parent, name) != FolderMap::none) return;
  places_.push_back({map_.refTo(parent), std::string{name}});
}

void WatchedTree::touchPlaceOf(Id id) {
  const Id parent = map_[id].parent;
  if (parent != FolderMap::none) touch(parent, std::string{map_.nameOf(id)});
}

void WatchedTree::markOwn(Id id) {
  map_[id].ownChange = parts_.clock.stamp();
}

// Also where the same folder will be found there again: a scan may have met another one meanwhile.
void WatchedTree::markReplaced(Id parent, std::string_view name) {
  const Id known = map_.child(parent, name);
  if (known != FolderMap::none && parts_.rules.movedFolderIsTree) markTree(known);
}

void WatchedTree::markTree(Id id) {
  map_[id].treeChange = parts_.clock.stamp();
}

void WatchedTree::settle(Clock::time_point now) {
  if (loss_) return;
  if (mounts_.haveChanged()) mountsMayHaveChanged_ = true;
  if (mountsMayHaveChanged_ && parts_.rules.noticesMounts) {
    for (const std::string& path : mounts_.refresh()) takeMountChange(path);
  }
  mountsMayHaveChanged_ = false;
  for (int pass = 0; pass < passes && !places_.empty(); ++pass) {
    std::ranges::sort(places_);
    const auto repeated = std::ranges::unique(places_);
    places_.erase(repeated.begin(), repeated.end());
    lookAt(std::exchange(places_, {}));
  }
  flagUnanswered();
  forgetAway(now);
}

// Places of one parent follow each other, so that it is opened and made sure of once.
void WatchedTree::lookAt(const std::vector<Place>& places) {
  Ref at;
  FileHandle handle;
  for (const Place& place : places) {
    if (parts_.shouldStop && parts_.shouldStop()) return lose(JournalAbsence::notRecording);
    const Id parent = map_.find(place.parent);
    if (parent == FolderMap::none || map_[parent].watch == 0) continue;
    if (!map_.isWithin(parent, map_.root())) {  // away: looked at when it is back, or forgotten with it
      places_.push_back(place);
      continue;
    }
    if (place.parent != at || !handle) handle = openVerified(parent);
    at = place.parent;
    Opened opened;
    Looked looked{.settled = false};
    if (handle) {
      opened = openChild(parent, handle, place.name);
      looked = look(parent, place.name, opened);
    }
    if (!looked.settled) {
      places_.push_back(place);
      touchPlaceOf(parent);
    }
    if (looked.toWalk != FolderMap::none && parts_.rules.watchesNewTrees) {
      walk(looked.toWalk, std::move(opened.handle));
    }
  }
}

// Where a question stays open, all below counts as changed until it is answered.
void WatchedTree::flagUnanswered() {
  const auto isOpen = [&](const Place& place) {
    const Id parent = map_.find(place.parent);
    return parent != FolderMap::none && map_.isWithin(parent, map_.root());
  };
  if (anyStale_ &&
      std::ranges::none_of(places_, isOpen)) {  // those of folders that are away or gone can wait
    map_.forEach(
        [](Id, FolderMap::Record& record) { record.flags &= static_cast<std::uint16_t>(~FolderMap::stale); });
    anyStale_ = false;
  }
  for (const Place& place : places_) {
    const Id parent = map_.find(place.parent);
    if (parent == FolderMap::none) continue;
    map_[parent].flags |= FolderMap::stale;
    anyStale_ = true;
  }
}

void WatchedTree::forgetAway(Clock::time_point now) {
  std::erase_if(away_, [&](const Away& away) {
    const Id id = map_.find(away.folder);
    if (id == FolderMap::none || !map_.isDetached(id)) return true;
    if (now - away.since < awayTime || expectsWatches_) return false;  // a scan may be about to tell of it
    for (const int watch : map_.remove(id)) parts_.queue.unwatch(watch);
    return true;
  });
}

WatchedTree::Opened WatchedTree::openChild(Id parent, const FileHandle& handle,
                                           const std::string& name) const {
  // What is mounted is not even looked at: it may hang.
  if (!mounts_.empty()) {
    const auto path = map_.relativePath(parent);
    if (path && mounts_.contains(joined(*path, name))) return {.error = EXDEV};
  }
  FileHandle opened = openFolderItself(handle.get(), name.c_str());
  if (!opened) return {.error = errno};
  const auto facts = factsOf(opened);
  if (!facts) return {.error = facts.error()};
  if (facts->mounted != identity_.mounted) return {.error = EXDEV};
  return {.handle = std::move(opened)};
}

FileHandle WatchedTree::openVerified(Id id) {
  const auto path = map_.relativePath(id);
  if (!path) return {};
  FileHandle handle = openByPath(*path);
  if (!handle || !parts_.rules.verifiesFolders) return handle;
  const auto watched = parts_.queue.watch(handle);
  if (watched && *watched == map_[id].watch) return handle;
  if (watched && map_.withWatch(*watched) == FolderMap::none && !expectsWatches_) {
    parts_.queue.unwatch(*watched);
  }
  return {};
}

// In steps where the path is longer than the kernel takes.
FileHandle WatchedTree::openByPath(const std::string& relativePath) const {
  FileHandle handle = openFolder(AT_FDCWD, parts_.root.c_str());
  std::string_view rest = relativePath;
  while (handle && !rest.empty()) {
    std::size_t end = rest.size();
    if (end >= PATH_MAX) end = rest.rfind('/', PATH_MAX - 1);
    handle = openFolderItself(handle.get(), std::string{rest.substr(0, end)}.c_str());
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return handle;
}

WatchedTree::Looked WatchedTree::look(Id parent, std::string_view name, const Opened& opened) {
  if (!opened.handle) return lookAtClosed(parent, name, opened.error);
  const auto watched = watch(opened.handle);
  if (!watched) return lookAtClosed(parent, name, watched.error());
  rewindFolder(opened.handle);
  const Id known = map_.child(parent, name);
  const Id owner = map_.withWatch(*watched);
  if (owner == FolderMap::none) return lookAtNew(parent, name, opened.handle, *watched);
  if (owner == known) return checkAccess(owner, opened.handle);
  if (map_.isWithin(parent, owner)) {  // the map is behind: a folder cannot be inside itself
    touchPlaceOf(owner);
    return {.settled = false};
  }
  if (known != FolderMap::none) putAway(known);
  moveTo(owner, parent, name);
  return checkAccess(owner, opened.handle);
}

WatchedTree::Looked WatchedTree::lookAtClosed(Id parent, std::string_view name, int error) {
  if (isForbidden(error)) {
    closeOff(parent, name);
    return {};
  }
  if (!isGone(error)) return {.settled = false};
  const Id known = map_.child(parent, name);
  if (known != FolderMap::none) {
    putAway(known);
    markOwn(parent);
  }
  return {};
}

WatchedTree::Looked WatchedTree::lookAtNew(Id parent, std::string_view name, const FileHandle& folder,
                                           int watch) {
  const Id known = map_.child(parent, name);
  if (known != FolderMap::none) putAway(known);
  const Id id = map_.add(parent, name);
  map_.setWatch(id, watch);
  if (!isFullyReadable(folder)) map_[id].flags |= FolderMap::unreadable;
  if (parts_.rules.newFolderIsTree) markTree(id);
  return {.toWalk = id};
}

WatchedTree::Looked WatchedTree::checkAccess(Id id, const FileHandle& folder) {
  FolderMap::Record& record = map_[id];
  const bool wasReadable = (record.flags & FolderMap::unreadable) == 0;
  if (isFullyReadable(folder) == wasReadable) return {};
  record.flags ^= FolderMap::unreadable;
  markTree(id);
  return {.toWalk = id};
}

// Nothing is known of what is below.
void WatchedTree::closeOff(Id parent, std::string_view name) {
  Id id = map_.child(parent, name);
  if (id != FolderMap::none && (map_[id].flags & FolderMap::unwatched) == 0) {
    putAway(id);
    id = FolderMap::none;
  }
  if (id == FolderMap::none) id = map_.add(parent, name, FolderMap::unwatched);
  markTree(id);
}

void WatchedTree::putAway(Id id) {
  map_.detach(id);
  away_.push_back({map_.refTo(id), Clock::now()});
}

void WatchedTree::moveTo(Id id, Id parent, std::string_view name) {
  if (!map_.isDetached(id)) {
    touchPlaceOf(id);
    map_.detach(id);
  }
  map_.attach(id, parent, name);
  if (parts_.rules.movedFolderIsTree) markTree(id);
}

WatchedTree::Frame WatchedTree::frameOf(Id id, FileHandle handle) {
  Frame frame{.folder = id, .handle = std::move(handle)};
  const RecorderRules& rules = parts_.rules;
  const auto list = [&] {
    if (!listSubfolders(frame.handle, frame.names)) map_[id].flags |= FolderMap::unreadable;
  };
  if (!rules.watchesBeforeListing) {
    parts_.queue.unwatch(map_[id].watch);
    list();
  }
  if (rules.betweenWatchAndList) rules.betweenWatchAndList(pathThroughHandle(frame.handle));
  if (rules.watchesBeforeListing) {
    list();
  } else {
    parts_.queue.fetch();  // a mark tells of all folders: what comes of an unwatched one is dropped here
    if (const auto watched = parts_.queue.watch(frame.handle)) map_.setWatch(id, *watched);
  }
  return frame;
}

void WatchedTree::walk(Id top, FileHandle handle) {
  std::vector<Frame> stack;
  stack.push_back(frameOf(top, std::move(handle)));
  while (!stack.empty()) {
    if (parts_.shouldStop && parts_.shouldStop()) return lose(JournalAbsence::notRecording);
    parts_.queue.fetch();
    Frame& frame = stack.back();
    if (frame.names.empty()) {
      stack.pop_back();
      continue;
    }
    const std::string name = std::move(frame.names.back());
    frame.names.pop_back();
    Opened opened = openChild(frame.folder, frame.handle, name);
    const Looked looked = look(frame.folder, name, opened);
    if (!looked.settled) touch(frame.folder, name);
    if (looked.toWalk != FolderMap::none) {
      stack.push_back(frameOf(looked.toWalk, std::move(opened.handle)));
    }
  }
}

// Something else, or the folder itself again, is at the path now.
void WatchedTree::takeMountChange(const std::string& relativePath) {
  Id at = map_.root();
  std::string_view rest = relativePath;
  for (;;) {
    const std::size_t slash = rest.find('/');
    const std::string_view name = rest.substr(0, slash);
    const Id next = map_.child(at, name);
    if (slash == std::string_view::npos) {
      markOwn(at);
      touch(at, name);
      if (next != FolderMap::none) markTree(next);
      return;
    }
    if (next == FolderMap::none) return markTree(at);
    at = next;
    rest.remove_prefix(slash + 1);
  }
}

bool WatchedTree::isOpenEnded(const FolderMap::Record& record) const {
  return (record.flags & (FolderMap::stale | FolderMap::unreadable)) != 0 ||
         (parts_.rules.unwatchedIsTree && (record.flags & FolderMap::unwatched) != 0);
}

std::expected<FolderChanges, JournalAbsence> WatchedTree::changes(std::uint64_t since) {
  if (parts_.rules.checksRoot && identityOf(parts_.root) != identity_) lose(JournalAbsence::rootReplaced);
  if (loss_) return std::unexpected(*loss_);
  const auto isTree = [&](const FolderMap::Record& record) {
    return record.treeChange > since || isOpenEnded(record);
  };
  const auto isInTree = [&](Id id) {
    while (id != FolderMap::none && !isTree(map_[id])) id = map_[id].parent;
    return id != FolderMap::none;
  };
  FolderChanges found;
  map_.forEach([&](Id id, const FolderMap::Record& record) {
    const bool tree = isTree(record);
    if ((!tree && record.ownChange <= since) || isInTree(record.parent)) return;
    if (found.directories.size() + found.trees.size() > answerLimit) return;
    const auto path = map_.relativePath(id);
    if (!path) return;  // away: the folder that it left has changed
    (tree ? found.trees : found.directories)
        .push_back(path->empty() ? parts_.root : joined(parts_.root, *path));
  });
  if (found.directories.size() + found.trees.size() > answerLimit) {
    return std::unexpected(JournalAbsence::tooManyChanges);
  }
  return found;
}

}  // namespace spacemint
