#include "core/host/linux/LinuxFolderListing.h"

#include "core/host/linux/FolderEntries.h"
#include "core/host/linux/FolderOpening.h"
#include "core/host/linux/HandleFacts.h"
#include "core/host/linux/MountTable.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

namespace spacemint {

namespace {

constexpr unsigned entryMask = STATX_TYPE | STATX_NLINK | STATX_MTIME | STATX_BLOCKS;
constexpr int entryFlags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
constexpr Bytes blockSize = 512;
// No real file is larger; a larger number means a damaged file system.
constexpr std::uint64_t largestBlockCount = std::uint64_t{1} << 50U;

EntryType typeOf(const struct statx& status) {
  if (S_ISREG(status.stx_mode)) return EntryType::file;
  return S_ISDIR(status.stx_mode) ? EntryType::folder : EntryType::other;
}

// Shared by all folders below a root.
struct Root {
  Mounted mounted;
  MountTree mounts;
  // May be null.
  FolderObserver* observer = nullptr;
};

// True if an entry that failed with this errno still exists.
bool isStillThere(int error) {
  return error != ENOENT && error != ENOTDIR && error != ELOOP;
}

class LinuxFolder final : public OpenFolder {
 public:
  LinuxFolder(FileHandle handle, std::shared_ptr<const Root> root, const MountTree* mounts, FolderRef ref)
      : handle_(std::move(handle)),
        root_(std::move(root)),
        mounts_(mounts),
        ref_(ref) {}

  std::uint64_t device() const override { return root_->mounted.device; }

  Batch nextBatch(ListingBuffer& buffer) override {
    buffer.entries.clear();
    const auto take = [&](const FolderEntry& entry) {
      buffer.entries.push_back(entryOf(entry.name, entry.type));
      if (root_->observer != nullptr) sum_.add(buffer.entries.back());
    };
    // One call may return only "." and "..".
    while (buffer.entries.empty()) {
      const auto more = readFolderEntries(handle_, {buffer.bytes.get(), ListingBuffer::size}, take);
      if (!more) return failure(more.error());
      if (!*more) return end();
    }
    return {.entries = buffer.entries};
  }

  std::expected<std::unique_ptr<OpenFolder>, int> openSubfolder(const std::string& name) override {
    const MountTree* mounts = mounts_ != nullptr ? mounts_->child(name) : nullptr;
    if (mounts != nullptr && mounts->isMountPoint) return std::unexpected(EXDEV);
    FileHandle opened = openFolderItself(handle_.get(), name.c_str());
    if (!opened) return obstacle(name, errno);
    const auto facts = factsOf(opened);
    if (!facts) return obstacle(name, facts.error());
    // A file system mounted after the mount table was read, or a Btrfs subvolume, which has its own device
    // number.
    if (facts->mounted != root_->mounted) return std::unexpected(EXDEV);
    FolderRef ref;
    if (root_->observer != nullptr) ref = root_->observer->opened(ref_, name, opened);
    return std::make_unique<LinuxFolder>(std::move(opened), root_, mounts, ref);
  }

 private:
  Batch end() const {
    if (root_->observer != nullptr) root_->observer->listed(ref_, sum_);
    return {};
  }

  Batch failure(int error) const {
    if (root_->observer != nullptr && isStillThere(error)) root_->observer->couldNotList(ref_);
    return {.error = error};
  }

  std::unexpected<int> obstacle(const std::string& name, int error) const {
    if (root_->observer != nullptr && isStillThere(error)) root_->observer->couldNotOpen(ref_, name);
    return std::unexpected(error);
  }

  // `name` ends in a NUL byte.
  Entry entryOf(std::string_view name, unsigned char kind) const {
    if (mounts_ != nullptr && isMountPoint(name)) {
      return {.name = name, .type = EntryType::folder, .device = Entry::otherVolume};
    }
    const Entry entry = readEntry(handle_, name, kind, root_->mounted.device);
    const bool isUnread = entry.error != 0 && isStillThere(entry.error);
    if (isUnread && root_->observer != nullptr) root_->observer->couldNotList(ref_);
    return entry;
  }

  bool isMountPoint(std::string_view name) const {
    const MountTree* mount = mounts_->child(name);
    return mount != nullptr && mount->isMountPoint;
  }

  FileHandle handle_;
  std::shared_ptr<const Root> root_;
  // The mounts below this folder; null if there are none.
  const MountTree* mounts_;
  FolderRef ref_;
  // Of the entries so far; only for an observer.
  FolderSum sum_;
};

class LinuxFolderListing final : public FolderListing {
 public:
  explicit LinuxFolderListing(FolderObserver* observer) : observer_(observer) {}

  std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string& path) override {
    FileHandle handle = openFolder(AT_FDCWD, path.c_str());
    if (!handle) return std::unexpected(systemError(path, errno));
    const auto facts = factsOf(handle);
    if (!facts) return std::unexpected(systemError(path, facts.error()));
    const std::string realPath = realPathOf(handle);
    auto root = std::make_shared<Root>(Root{.mounted = facts->mounted, .observer = observer_});
    if (!realPath.empty()) root->mounts = mountsBelow(realPath, currentMounts());
    const MountTree* mounts = root->mounts.below.empty() ? nullptr : &root->mounts;
    FolderRef ref;
    if (observer_ != nullptr) ref = observer_->openedRoot(handle);
    return std::make_unique<LinuxFolder>(std::move(handle), std::move(root), mounts, ref);
  }

 private:
  FolderObserver* observer_;
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
  if (status.stx_blocks > largestBlockCount) {
    entry.error = EOVERFLOW;
  } else {
    entry.allocated = static_cast<Bytes>(status.stx_blocks) * blockSize;
  }
  return entry;
}

std::unique_ptr<FolderListing> hostFolderListing() {
  return std::make_unique<LinuxFolderListing>(nullptr);
}

std::unique_ptr<FolderListing> observedFolderListing(FolderObserver& observer) {
  return std::make_unique<LinuxFolderListing>(&observer);
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
