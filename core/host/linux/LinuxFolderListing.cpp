#include "core/host/linux/LinuxFolderListing.h"

#include "core/base/AsciiText.h"
#include "core/host/VolumeInfo.h"
#include "core/host/linux/FolderEntries.h"
#include "core/host/linux/FolderOpening.h"
#include "core/host/linux/HandleFacts.h"
#include "core/host/linux/Subvolume.h"
#include "core/host/linux/Territory.h"
#include "core/host/linux/journal/FileSystemTraits.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <mutex>
#include <numeric>

namespace spacemint {

namespace {

constexpr unsigned entryMask = STATX_TYPE | STATX_NLINK | STATX_MTIME | STATX_SIZE | STATX_BLOCKS;
constexpr int entryFlags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
constexpr Bytes blockSize = 512;
// Where tools keep snapshots; ordinary users often may not open it.
constexpr std::string_view snapshotFolder = ".snapshots";
// No real file is larger; a larger number means a damaged file system.
constexpr std::uint64_t largestBlockCount = std::uint64_t{1} << 50U;

EntryType typeOf(const struct statx& status) {
  if (S_ISREG(status.stx_mode)) return EntryType::file;
  return S_ISDIR(status.stx_mode) ? EntryType::folder : EntryType::other;
}

// Shared by all folders below a root.
struct Root {
  Territory territory;
  std::uint64_t device = 0;
  // The root's path as the kernel has it, and as it was given.
  std::string realPath;
  std::string path;
  // May be null.
  FolderObserver* observer = nullptr;
  bool asksByInode = false;
  std::mutex mutex;
  std::vector<LeftOut> snapshots;

  void noteSnapshot(const FileHandle& folder, const std::string& name, std::optional<Date> created) {
    const std::string realParent = realPathOf(folder);
    if (!isAtOrBelow(realParent, realPath)) return;  // moved away meanwhile
    std::string_view rest = realParent;
    rest.remove_prefix(realPath.size());
    std::string full = path;
    for (const std::string_view part : {rest, std::string_view{name}}) {
      if (!full.ends_with('/') && !part.empty() && !part.starts_with('/')) full += '/';
      full += part;
    }
    const std::lock_guard lock(mutex);
    snapshots.push_back({full, LeftOut::Kind::snapshot, created});
  }
};

// True if an entry that failed with this errno still exists.
bool isStillThere(int error) {
  return error != ENOENT && error != ENOTDIR && error != ELOOP;
}

class LinuxFolder final : public OpenFolder {
 public:
  LinuxFolder(FileHandle handle, std::shared_ptr<Root> root, const HandleFacts& facts,
              const MountTree* mounts, FolderRef ref)
      : handle_(std::move(handle)),
        root_(std::move(root)),
        device_(facts.mounted.device),
        facts_{.place = root_->territory.indexOf(facts.mounted.mountId).value_or(0),
               .ownSize = facts.allocated},
        mounts_(mounts),
        ref_(ref) {}

  std::uint64_t device() const override { return root_->device; }
  Facts facts() const override { return facts_; }

  Batch nextBatch(ListingBuffer& buffer) override {
    buffer.entries.clear();
    // One call may return only "." and "..".
    while (buffer.entries.empty()) {
      const auto more = root_->asksByInode ? readByInode(buffer) : read(buffer);
      if (!more) return failure(more.error());
      if (!*more) return end();
    }
    if (root_->observer != nullptr) {
      for (const Entry& entry : buffer.entries) sum_.add(entry);
    }
    return {.entries = buffer.entries};
  }

  std::expected<std::unique_ptr<OpenFolder>, int> openSubfolder(const std::string& name) override {
    const MountTree* mounts = mounts_ != nullptr ? mounts_->child(name) : nullptr;
    const bool isMountPoint = mounts != nullptr && mounts->isMountPoint;
    if (isMountPoint && !mounts->isEntered) return std::unexpected(EXDEV);
    FileHandle opened = openFolderItself(handle_.get(), name.c_str());
    if (!opened) return obstacle(name, errno);
    const auto facts = factsOf(opened);
    if (!facts) return obstacle(name, facts.error());
    if (const auto verdict = root_->territory.verdict(opened, *facts, isMountPoint);
        verdict != Territory::Verdict::inside) {
      if (verdict == Territory::Verdict::snapshot) noteSnapshot(name, subvolumeOf(opened));
      return std::unexpected(EXDEV);
    }
    const FolderRef ref = observe(name, opened, isMountPoint);
    return std::make_unique<LinuxFolder>(std::move(opened), root_, *facts, mounts, ref);
  }

  void leaveOut(const std::string& name) override {
    if (root_->observer != nullptr) root_->observer->couldNotOpen(ref_, name);
  }

 private:
  Batch end() const {
    if (root_->observer != nullptr) root_->observer->listed(ref_, sum_);
    return {};
  }

  std::expected<bool, int> read(ListingBuffer& buffer) const {
    return readFolderEntries(
        handle_, {buffer.bytes.get(), ListingBuffer::size},
        [&](const FolderEntry& entry) { buffer.entries.push_back(entryOf(entry.name, entry.type)); });
  }

  std::expected<bool, int> readByInode(ListingBuffer& buffer) const {
    std::vector<FolderEntry> names;
    const auto more = readFolderEntries(handle_, {buffer.bytes.get(), ListingBuffer::size},
                                        [&](const FolderEntry& entry) { names.push_back(entry); });
    std::vector<std::size_t> order(names.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, {}, [&](std::size_t i) { return names[i].inode; });
    buffer.entries.resize(names.size());
    for (const std::size_t i : order) buffer.entries[i] = entryOf(names[i].name, names[i].type);
    return more;
  }

  Batch failure(int error) const {
    if (root_->observer != nullptr && isStillThere(error)) root_->observer->couldNotList(ref_);
    return {.error = error};
  }

  std::unexpected<int> obstacle(const std::string& name, int error) const {
    if (root_->observer != nullptr && isStillThere(error)) root_->observer->couldNotOpen(ref_, name);
    if (error != EACCES || name != snapshotFolder) return std::unexpected(error);
    const auto facts = factsOf(handle_, name.c_str());
    const bool isSubvolume = facts && facts->inode == Subvolume::topInode && facts->mounted.device != device_;
    if (!isSubvolume) return std::unexpected(error);
    noteSnapshot(name, std::nullopt);
    return std::unexpected(EXDEV);
  }

  void noteSnapshot(const std::string& name, const std::optional<Subvolume>& subvolume) const {
    root_->noteSnapshot(handle_, name, subvolume ? subvolume->created : std::nullopt);
  }

  // The observer cannot record a file system that changes without events. Everything on it counts as changed.
  FolderRef observe(const std::string& name, const FileHandle& opened, bool isMountPoint) const {
    if (root_->observer == nullptr || ref_ == FolderRef{}) return {};
    if (!isMountPoint || traitsOf(opened).reportsAllChanges)
      return root_->observer->opened(ref_, name, opened);
    root_->observer->couldNotOpen(ref_, name);
    return {};
  }

  // `name` ends in a NUL byte.
  Entry entryOf(std::string_view name, unsigned char kind) const {
    const MountTree* mount = mounts_ != nullptr ? mounts_->child(name) : nullptr;
    if (mount != nullptr && mount->isMountPoint) {
      return {.name = name,
              .type = EntryType::folder,
              .device = mount->isEntered ? root_->device : Entry::otherVolume};
    }
    const Entry entry = readEntry(handle_, name, kind, root_->device);
    const bool isUnread = entry.error != 0 && isStillThere(entry.error);
    if (isUnread && root_->observer != nullptr) root_->observer->couldNotList(ref_);
    return entry;
  }

  FileHandle handle_;
  std::shared_ptr<Root> root_;
  std::uint64_t device_;
  Facts facts_;
  // The mounts below this folder; null if there are none.
  const MountTree* mounts_;
  FolderRef ref_;
  // Of the entries so far; only for an observer.
  FolderSum sum_;
};

class LinuxFolderListing final : public FolderListing {
 public:
  explicit LinuxFolderListing(const ListingOptions& options) : options_(options) {}

  std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string& path) override {
    FileHandle handle = openFolder(AT_FDCWD, path.c_str());
    if (!handle) return std::unexpected(systemError(path, errno));
    const auto facts = factsOf(handle);
    if (!facts) return std::unexpected(systemError(path, facts.error()));
    root_ = std::make_shared<Root>();
    root_->territory = Territory::of(handle, *facts);
    root_->device = facts->mounted.device;
    root_->realPath = realPathOf(handle);
    root_->path = path;
    root_->observer = options_.observer;
    root_->asksByInode = options_.order == AskingOrder::inode ||
                         (options_.order == AskingOrder::byDisk && diskTraits(path).isRotational);
    const MountTree& mounts = root_->territory.mounts();
    FolderRef ref;
    if (options_.observer != nullptr) ref = options_.observer->openedRoot(handle, root_->territory.places());
    return std::make_unique<LinuxFolder>(std::move(handle), root_, *facts,
                                         mounts.below.empty() ? nullptr : &mounts, ref);
  }

  std::vector<ListedPlace> places() const override {
    return root_ ? root_->territory.places() : std::vector<ListedPlace>{};
  }

  std::vector<LeftOut> leftOut() const override {
    if (!root_) return {};
    std::vector<LeftOut> leftOut = root_->territory.leftOut();
    const std::lock_guard lock(root_->mutex);
    leftOut.insert(leftOut.end(), root_->snapshots.begin(), root_->snapshots.end());
    // A listing with helpers may open a folder twice.
    std::ranges::sort(leftOut);
    const auto repeated = std::ranges::unique(leftOut);
    leftOut.erase(repeated.begin(), repeated.end());
    return leftOut;
  }

 private:
  ListingOptions options_;
  // Of the last opened root; null before.
  std::shared_ptr<Root> root_;
};

}  // namespace

Entry readEntry(const FileHandle& folder, std::string_view name, unsigned char kind, std::uint64_t device) {
  Entry entry{.name = name, .device = device};
  if (kind == DT_DIR) {
    entry.type = EntryType::folder;
    return entry;
  }
  struct statx status {};
  if (statx(folder.get(), name.data(), entryFlags, entryMask, &status) != 0) {
    entry.error = errno;
    return entry;
  }
  entry.type = typeOf(status);
  entry.links = status.stx_nlink;
  entry.modified = status.stx_mtime.tv_sec;
  entry.length =
      static_cast<Bytes>(std::min<std::uint64_t>(status.stx_size, std::numeric_limits<Bytes>::max()));
  if (status.stx_blocks > largestBlockCount) {
    entry.error = EOVERFLOW;
  } else {
    entry.allocated = static_cast<Bytes>(status.stx_blocks) * blockSize;
  }
  return entry;
}

std::unique_ptr<FolderListing> hostFolderListing() {
  return linuxFolderListing({});
}

std::vector<ListedPlace> hostListingPlaces(const std::string& root) {
  const FileHandle handle = openFolder(AT_FDCWD, root.c_str());
  if (!handle) return {};
  const auto facts = factsOf(handle);
  return facts ? Territory::of(handle, *facts).places() : std::vector<ListedPlace>{};
}

std::unique_ptr<FolderListing> linuxFolderListing(const ListingOptions& options) {
  return std::make_unique<LinuxFolderListing>(options);
}

std::size_t raiseOpenFileLimit(std::size_t wanted) {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return 0;
  const rlim_t raised = std::min<rlim_t>(limit.rlim_max, wanted);
  if (limit.rlim_cur < raised) {
    const rlimit higher{raised, limit.rlim_max};
    if (setrlimit(RLIMIT_NOFILE, &higher) == 0) return raised;
  }
  return limit.rlim_cur;
}

}  // namespace spacemint
