#include "core/host/linux/journal/WatchedTree.h"

#include "core/base/AsciiText.h"
#include "core/host/ListingError.h"
#include "core/host/linux/FolderEntries.h"
#include "core/host/linux/journal/FileSystemTraits.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/inotify.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <span>
#include <utility>

namespace spacemint {

namespace {

// So many unsettled places may gather before they are looked at while events are still coming in.
constexpr std::size_t placeLimit = 20'000;
// Looking at one place can point at others. What is left after so many passes waits for the next `settle`.
constexpr int passes = 3;
constexpr std::size_t listingBufferSize = 32'768;

// A name appeared in the folder or disappeared from it.
constexpr std::uint32_t nameEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;

bool isForbidden(int error) {
  return error == EACCES || error == EPERM || error == ENOSPC;
}

bool isFullyReadable(const FileHandle& folder) {
  return faccessat(folder.get(), ".", R_OK | X_OK, AT_EACCESS) == 0;
}

// The names in an open folder that may be folders; false when it could not be listed to its end.
bool listSubfolders(const FileHandle& folder, std::span<std::byte> buffer, std::vector<std::string>& names) {
  const auto take = [&](const FolderEntry& entry) {
    if (entry.type == DT_DIR || entry.type == DT_UNKNOWN) names.emplace_back(entry.name);
  };
  for (;;) {
    const auto more = readFolderEntries(folder, buffer, take);
    if (!more || !*more) return more.has_value();
  }
}

void setSum(FolderMap& map, FolderMap::Id id, const FolderSum& sum) {
  map.setOwn(id, {static_cast<std::uint64_t>(sum.bytes), static_cast<std::uint32_t>(sum.files)});
  map[id].set(FolderMap::worktree, sum.isWorktree);
  map[id].set(FolderMap::linked, sum.hasLinks);
}

// What is mounted at a name in a folder; null if nothing is. `mounts` are those in the folder; may be null.
const MountTree* mountPointIn(const MountTree* mounts, std::string_view name) {
  const MountTree* mount = mounts != nullptr ? mounts->child(name) : nullptr;
  return mount != nullptr && mount->isMountPoint ? mount : nullptr;
}

}  // namespace

std::optional<WatchedTree::Identity> WatchedTree::identityOf(const std::string& path) {
  const FileHandle handle{open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)};
  if (!handle) return std::nullopt;
  const auto facts = factsOf(handle);
  if (!facts) return std::nullopt;
  return Identity{facts->inode, facts->mounted};
}

void WatchedTree::reset() {
  map_.reset();
  places_.clear();
  settleAt_ = placeLimit;
  movedOut_.clear();
  settlingUntil_.clear();
  listingBuffer_.resize(listingBufferSize);
  anyStale_ = hitWatchLimit_ = isScanning_ = mountsMayHaveChanged_ = false;
  error_ = JournalError::settingUp;
}

bool WatchedTree::begin(const FileHandle& root) {
  error_.reset();
  if (!traitsOf(root).reportsAllChanges) {
    fail(JournalError::unreportedChanges);
    return false;
  }
  const auto identity = identityOf(pathThroughHandle(root));
  const auto facts = factsOf(root);
  if (!facts) {
    fail(JournalError::failed);
    return false;
  }
  mounts_ = MountPoints{realPathOf(root)};
  territory_ = Territory::of(root, *facts);
  const bool isOneVolume = std::ranges::all_of(
      places(), [&](const ListedPlace& place) { return place.pool == places().front().pool; });
  const auto begun = parts_.queue.begin(root, isOneVolume);
  watchLimit_ = parts_.watchLimit != 0 ? parts_.watchLimit : parts_.queue.source()->watchLimit();
  const auto watched = accept(begun);
  if (!identity || !watched) {
    fail(JournalError::failed);
    return false;
  }
  identity_ = *identity;
  map_.setWatch(map_.root(), *watched);
  map_[map_.root()].flags |= FolderMap::measured;
  rewindFolder(root);
  return true;
}

void WatchedTree::crawlFromRoot(FileHandle root) {
  crawlMeasures_ = true;
  crawl(map_.root(), std::move(root));
  crawlMeasures_ = false;
}

void WatchedTree::fail(JournalError error) {
  if (!error_ || error_ == JournalError::settingUp) error_ = error;
}

std::expected<int, int> WatchedTree::watch(const FileHandle& folder) {
  return accept(parts_.queue.source()->watch(folder));
}

// At the limit, a new watch is removed again. Folders that are watched already stay watched.
std::expected<int, int> WatchedTree::accept(std::expected<int, int> added) {
  // A scan may try the same folder twice. What was refused once must be refused the second time too.
  const bool isFull = map_.watches() >= watchLimit_ || (isScanning_ && hitWatchLimit_);
  if (!added || !isFull || map_.withWatch(*added) != FolderMap::none) {
    if (!added && added.error() == ENOSPC) hitWatchLimit_ = true;
    return added;
  }
  unwatch(*added);
  hitWatchLimit_ = true;
  return std::unexpected(ENOSPC);
}

// What a scan reports may be out of date: another folder may have the name by now. In that case the places
// are looked at later.
FolderRef WatchedTree::adopt(FolderRef parentRef, std::string_view name, std::expected<int, int> added) {
  const Id parent = map_.find(parentRef);
  if (error_ || parent == FolderMap::none) return {};
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
      moveOut(known);
    }
    id = map_.add(parent, name);
    map_.setWatch(id, *watched);
  } else if (id != known) {
    touchPlaceOf(id);
    touch(parent, name);
  }
  // Set before the scan lists the folder: an event that is handled meanwhile removes it.
  map_[id].set(FolderMap::measured, true);
  return map_.refTo(id);
}

void WatchedTree::adoptClosed(FolderRef parentRef, std::string_view name) {
  const Id parent = map_.find(parentRef);
  if (!error_ && parent != FolderMap::none) closeOff(parent, name);
}

void WatchedTree::adoptListed(FolderRef folder, const FolderSum& sum) {
  const Id id = map_.find(folder);
  if (!error_ && id != FolderMap::none && (map_[id].flags & FolderMap::measured) != 0) setSum(map_, id, sum);
}

void WatchedTree::adoptUnlisted(FolderRef folder) {
  const Id id = map_.find(folder);
  if (!error_ && id != FolderMap::none) map_[id].flags |= FolderMap::unreadable;
}

void WatchedTree::handle(const FolderEvent& event) {
  if (error_) return;
  if (places_.size() >= settleAt_) {
    settle(Clock::now());
    settleAt_ = places_.size() + placeLimit;
  }
  if ((event.mask & IN_Q_OVERFLOW) != 0) return fail(JournalError::eventsLost);
  const Id id = map_.withWatch(event.watch);
  if (id == FolderMap::none) {
    if ((event.mask & IN_IGNORED) == 0 && !isScanning_) unwatch(event.watch);
  } else if ((event.mask & IN_UNMOUNT) != 0) {
    // The mount table reports the unmount of other volumes.
    if (id == map_.root()) fail(JournalError::unmounted);
  } else if ((event.mask & IN_IGNORED) != 0) {
    touchPlaceOf(id);
    map_.dropWatch(id);
    if (id == map_.root()) fail(JournalError::rootReplaced);
  } else if ((event.mask & (IN_DELETE_SELF | IN_MOVE_SELF)) != 0) {
    if (id == map_.root()) fail(JournalError::rootReplaced);
  } else {
    markOwn(id);
    if ((event.mask & IN_ISDIR) == 0) return;
    if (event.name.empty()) return touchPlaceOf(id);  // it may have become readable or unreadable
    if ((event.mask & nameEvents) != 0) markReplaced(id, event.name);
    touch(id, event.name);
  }
}

void WatchedTree::touch(Id parent, std::string_view name) {
  places_.push_back({map_.refTo(parent), std::string{name}});
}

void WatchedTree::touchPlaceOf(Id id) {
  const Id parent = map_[id].parent;
  if (parent != FolderMap::none) touch(parent, std::string{map_.nameOf(id)});
}

void WatchedTree::markOwn(Id id) {
  map_[id].ownChange = parts_.clock.stamp();
  map_[id].set(FolderMap::measured, false);
}

// The folder counts as changed even if it is found at this place again: meanwhile a scan may have listed
// another folder there.
void WatchedTree::markReplaced(Id parent, std::string_view name) {
  const Id known = map_.child(parent, name);
  if (known != FolderMap::none) markTree(known);
}

void WatchedTree::markTree(Id id) {
  map_[id].treeChange = parts_.clock.stamp();
}

void WatchedTree::settle(Clock::time_point now) {
  if (error_) return;
  if (mounts_.haveChanged()) mountsMayHaveChanged_ = true;
  if (std::exchange(mountsMayHaveChanged_, false)) noticeMountChanges();
  for (int pass = 0; pass < passes && !places_.empty(); ++pass) {
    std::ranges::sort(places_);
    const auto repeated = std::ranges::unique(places_);
    places_.erase(repeated.begin(), repeated.end());
    lookAt(std::exchange(places_, {}));
  }
  flagUnsettled();
  dropMovedOut(now);
}

// The places are sorted by parent, so each parent is opened and verified once.
void WatchedTree::lookAt(const std::vector<Place>& places) {
  FolderRef at;
  FileHandle handle;
  for (const Place& place : places) {
    if (parts_.shouldStop && parts_.shouldStop()) return fail(JournalError::notRecording);
    const Id parent = map_.find(place.parent);
    if (parent == FolderMap::none || map_[parent].watch == 0) continue;
    if (!map_.isWithin(parent,
                       map_.root())) {  // moved out: the place waits until the folder is back or dropped
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
    if (looked.toCrawl != FolderMap::none) crawl(looked.toCrawl, std::move(opened.handle));
  }
}

// While a place is unsettled, everything below its parent counts as changed.
void WatchedTree::flagUnsettled() {
  const auto isInTree = [&](const Place& place) {
    const Id parent = map_.find(place.parent);
    return parent != FolderMap::none && map_.isWithin(parent, map_.root());
  };
  // Places in folders that moved out or are gone do not matter now.
  if (anyStale_ && std::ranges::none_of(places_, isInTree)) {
    map_.clearFlag(FolderMap::stale);
    anyStale_ = false;
  }
  for (const Place& place : places_) {
    const Id parent = map_.find(place.parent);
    if (parent == FolderMap::none) continue;
    map_[parent].flags |= FolderMap::stale;
    anyStale_ = true;
  }
}

void WatchedTree::dropMovedOut(Clock::time_point now) {
  std::erase_if(movedOut_, [&](const MovedOut& moved) {
    const Id id = map_.find(moved.folder);
    if (id == FolderMap::none || !map_.isDetached(id)) return true;
    if (now - moved.since < moveTime || isScanning_) return false;  // a scan may be about to report it
    for (const int watch : map_.remove(id)) unwatch(watch);
    return true;
  });
}

// The mounts in this folder and below; null if there are none.
const MountTree* WatchedTree::mountsIn(Id folder) const {
  if (territory_.mounts().below.empty()) return nullptr;
  const auto path = map_.relativePath(folder);
  if (!path) return nullptr;
  const MountTree* node = &territory_.mounts();
  for (const std::string_view name : pieces(*path, '/')) {
    node = node->child(name);
    if (node == nullptr) return nullptr;
  }
  return node;
}

// A mark on the root's file system reports nothing of other ones.
bool WatchedTree::reportsChanges(const FileHandle& mounted, const HandleFacts& facts) const {
  if (!traitsOf(mounted).reportsAllChanges) return false;
  const auto place = territory_.indexOf(facts.mounted.mountId);
  return !parts_.queue.marksFileSystem() || (place && places()[*place].pool == places().front().pool);
}

WatchedTree::Opened WatchedTree::openChild(Id parent, const FileHandle& handle,
                                           const std::string& name) const {
  // File systems outside of the territory are not touched, because they may hang.
  const MountTree* mount = mountPointIn(mountsIn(parent), name);
  if (mount != nullptr && !mount->isEntered) return {.error = EXDEV};
  FileHandle opened = openFolderItself(handle.get(), name.c_str());
  if (!opened) return {.error = errno};
  const auto facts = factsOf(opened);
  if (!facts) return {.error = facts.error()};
  if (territory_.verdict(opened, *facts, mount != nullptr) != Territory::Verdict::inside) {
    return {.error = EXDEV};
  }
  // A folder that may not be opened counts as changed in every answer.
  if (mount != nullptr && !reportsChanges(opened, *facts)) return {.error = EPERM};
  return {.handle = std::move(opened)};
}

// Opens the folder at the path that the map has for it. Empty when another folder is there.
FileHandle WatchedTree::openVerified(Id id) {
  const auto path = map_.relativePath(id);
  if (!path) return {};
  FileHandle handle = openByPath(*path);
  if (!handle) return {};
  const auto watched = parts_.queue.source()->watch(handle);
  if (watched && *watched == map_[id].watch) return handle;
  if (watched && map_.withWatch(*watched) == FolderMap::none && !isScanning_) unwatch(*watched);
  return {};
}

// Opens a path that is longer than the kernel accepts in several steps.
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
  if (map_.isWithin(parent, owner)) {  // the map is out of date: a folder cannot be inside itself
    touchPlaceOf(owner);
    return {.settled = false};
  }
  if (known != FolderMap::none) moveOut(known);
  moveTo(owner, parent, name);
  return checkAccess(owner, opened.handle);
}

WatchedTree::Looked WatchedTree::lookAtClosed(Id parent, std::string_view name, int error) {
  if (isForbidden(error)) {
    closeOff(parent, name);
    return {};
  }
  if (!isGoneOrElsewhere(error)) return {.settled = false};
  const Id known = map_.child(parent, name);
  if (known != FolderMap::none) {
    moveOut(known);
    markOwn(parent);
  }
  return {};
}

WatchedTree::Looked WatchedTree::lookAtNew(Id parent, std::string_view name, const FileHandle& folder,
                                           int watch) {
  const Id known = map_.child(parent, name);
  if (known != FolderMap::none) moveOut(known);
  const Id id = map_.add(parent, name);
  map_.setWatch(id, watch);
  if (!isFullyReadable(folder)) map_[id].flags |= FolderMap::unreadable;
  markTree(id);
  return {.toCrawl = id};
}

WatchedTree::Looked WatchedTree::checkAccess(Id id, const FileHandle& folder) {
  FolderMap::Record& record = map_[id];
  const bool wasReadable = (record.flags & FolderMap::unreadable) == 0;
  if (isFullyReadable(folder) == wasReadable) return {};
  record.flags ^= FolderMap::unreadable;
  markTree(id);
  return {.toCrawl = id};
}

// Records a folder that is not watched. Everything below it counts as changed in every answer.
void WatchedTree::closeOff(Id parent, std::string_view name) {
  Id id = map_.child(parent, name);
  if (id != FolderMap::none && (map_[id].flags & FolderMap::unwatched) == 0) {
    moveOut(id);
    id = FolderMap::none;
  }
  if (id == FolderMap::none) id = map_.add(parent, name, FolderMap::unwatched);
  markTree(id);
}

void WatchedTree::moveOut(Id id) {
  map_.detach(id);
  movedOut_.push_back({map_.refTo(id), Clock::now()});
}

void WatchedTree::moveTo(Id id, Id parent, std::string_view name) {
  if (!map_.isDetached(id)) {
    touchPlaceOf(id);
    map_.detach(id);
  }
  map_.attach(id, parent, name);
  markTree(id);
}

// Lists a folder that is watched already. The order matters: what appears before the listing is in it, and
// what appears after the watch causes an event. Sizes are listed when they are asked for, because a new
// folder is often being filled; only the first crawl does it at once.
WatchedTree::Frame WatchedTree::listed(Id id, FileHandle handle) {
  Frame frame{.folder = id, .handle = std::move(handle)};
  if (crawlMeasures_) {
    list(id, frame.handle, [&](const Entry& entry) {
      if (entry.type == EntryType::folder) frame.names.emplace_back(entry.name);
    });
  } else if (!listSubfolders(frame.handle, listingBuffer_, frame.names)) {
    map_[id].flags |= FolderMap::unreadable;
  }
  return frame;
}

// Lists a folder that is watched already, and stores its own size. Fetches events meanwhile: the kernel's
// queue would overflow during the listing of a large folder.
void WatchedTree::list(Id id, const FileHandle& folder, const Visit& visit) {
  const MountTree* mounts = mountsIn(id);
  FolderSum sum;
  bool isWhole = true;
  const auto take = [&](const FolderEntry& read) {
    if (mountPointIn(mounts, read.name) != nullptr) return;
    const Entry entry = readEntry(folder, read.name, read.type, identity_.mounted.device);
    if (entry.error != 0 && !isGoneOrElsewhere(entry.error)) isWhole = false;
    sum.add(entry);
    visit(entry);
  };
  for (bool isMore = true; isMore;) {
    const auto read = readFolderEntries(folder, listingBuffer_, take);
    if (!read) isWhole = false;
    isMore = read.value_or(false);
    parts_.queue.fetch();
  }
  setSum(map_, id, sum);
  map_[id].set(FolderMap::measured, isWhole);
  if (!isWhole) map_[id].set(FolderMap::unreadable, true);
}

void WatchedTree::crawl(Id top, FileHandle handle) {
  std::vector<Frame> stack;
  stack.push_back(listed(top, std::move(handle)));
  while (!stack.empty()) {
    if (parts_.shouldStop && parts_.shouldStop()) return fail(JournalError::notRecording);
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
    if (looked.toCrawl != FolderMap::none) {
      stack.push_back(listed(looked.toCrawl, std::move(opened.handle)));
    }
  }
}

void WatchedTree::noticeMountChanges() {
  const FileHandle root = openFolder(AT_FDCWD, parts_.root.c_str());
  const auto facts = root ? factsOf(root) : std::unexpected(errno);
  if (facts) territory_ = Territory::of(root, *facts);
  for (const std::string& path : mounts_.refresh()) takeMountChange(path);
}

// Something was mounted at this path or unmounted from it.
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

}  // namespace spacemint
