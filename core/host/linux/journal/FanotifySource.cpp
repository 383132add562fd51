#include "core/host/linux/journal/FanotifySource.h"

#include "core/host/linux/FolderOpening.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <linux/magic.h>
#include <sys/fanotify.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <limits>

namespace spacemint {

namespace {

constexpr std::uint64_t markMask = FAN_CREATE | FAN_DELETE | FAN_MOVED_FROM | FAN_MOVED_TO | FAN_MODIFY |
                                   FAN_CLOSE_WRITE | FAN_ATTRIB | FAN_ONDIR;
// The bits are handed on as they are.
static_assert(FAN_CREATE == IN_CREATE && FAN_DELETE == IN_DELETE && FAN_MOVED_FROM == IN_MOVED_FROM &&
              FAN_MOVED_TO == IN_MOVED_TO && FAN_MODIFY == IN_MODIFY && FAN_CLOSE_WRITE == IN_CLOSE_WRITE &&
              FAN_ATTRIB == IN_ATTRIB && FAN_ONDIR == IN_ISDIR && FAN_Q_OVERFLOW == IN_Q_OVERFLOW);

constexpr std::size_t bufferSize = std::size_t{1} << 16U;

// File systems whose handles name the same folder for as long as it exists. Others (FAT, FUSE) give a folder
// another one when it has been dropped from memory, or put the handle of something below it in its place.
bool hasLastingHandles(const FileHandle& folder) {
  constexpr std::array<std::uint32_t, 5> types{EXT4_SUPER_MAGIC, XFS_SUPER_MAGIC, BTRFS_SUPER_MAGIC,
                                               F2FS_SUPER_MAGIC, TMPFS_MAGIC};
  struct statfs status {};
  return fstatfs(folder.get(), &status) == 0 &&
         std::ranges::find(types, static_cast<std::uint32_t>(status.f_type)) != types.end();
}

// No folder is closed to it then: a mark would not tell that one becomes readable, its handle being unknown.
bool readsAllFolders() {
  __user_cap_header_struct head{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
  std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> sets{};
  return syscall(SYS_capget, &head, sets.data()) == 0 &&
         (sets[0].effective & CAP_TO_MASK(CAP_DAC_READ_SEARCH)) != 0;
}

template <class Head>
bool copyHead(Head& head, std::string_view bytes) {
  if (bytes.size() < sizeof head) return false;
  std::memcpy(&head, bytes.data(), sizeof head);
  return true;
}

// One event of the kernel's.
struct Told {
  std::uint64_t what = 0;
  std::optional<FolderHandle> folder;
  std::string_view name;
};

// Takes a folder and a name from one record of an event, if that is what it holds.
void readRecord(std::string_view record, Told& told) {
  fanotify_event_info_header head{};
  copyHead(head, record);
  if (head.info_type != FAN_EVENT_INFO_TYPE_DFID_NAME && head.info_type != FAN_EVENT_INFO_TYPE_DFID) return;
  const std::size_t handleAt = offsetof(fanotify_event_info_fid, handle);
  alignas(file_handle) std::array<char, sizeof(file_handle) + MAX_HANDLE_SZ> room{};
  const std::string_view rest = record.substr(std::min(handleAt, record.size()));
  std::memcpy(room.data(), rest.data(), std::min(rest.size(), room.size()));
  const auto& handle = *reinterpret_cast<const file_handle*>(room.data());
  const std::size_t nameAt = sizeof(file_handle) + handle.handle_bytes;
  if (nameAt > rest.size()) return;
  told.folder = FolderHandle::of(handle);
  if (head.info_type != FAN_EVENT_INFO_TYPE_DFID_NAME) return;
  told.name = rest.substr(nameAt);
  told.name = told.name.substr(0, told.name.find('\0'));
  if (told.name == ".") told.name = {};  // the folder itself
}

// Takes the first event off; absent where it is not understood.
std::optional<Told> readEvent(std::string_view& events) {
  fanotify_event_metadata head{};
  if (!copyHead(head, events) || head.vers != FANOTIFY_METADATA_VERSION || head.event_len > events.size() ||
      head.event_len < head.metadata_len) {
    return std::nullopt;
  }
  Told told{.what = head.mask, .folder = {}, .name = {}};
  std::string_view records = events.substr(head.metadata_len, head.event_len - head.metadata_len);
  events.remove_prefix(head.event_len);
  fanotify_event_info_header record{};
  while (copyHead(record, records)) {
    if (record.len < sizeof record || record.len > records.size()) return std::nullopt;
    readRecord(records.substr(0, record.len), told);
    records.remove_prefix(record.len);
  }
  return told;
}

// Whether events name the folder by the handle that it has when asked for: seen from one that is caused.
bool tellsBy(const FolderHandle& handle, const FileHandle& group, const FileHandle& folder) {
  constexpr std::uint64_t mask = FAN_OPEN | FAN_ONDIR;
  if (fanotify_mark(group.get(), FAN_MARK_ADD, mask, folder.get(), nullptr) != 0) return false;
  const FileHandle opened = openFolder(folder.get(), ".");
  fanotify_mark(group.get(), FAN_MARK_REMOVE, mask, folder.get(), nullptr);
  std::array<char, 4'096> buffer{};
  const ssize_t length = read(group.get(), buffer.data(), buffer.size());
  if (!opened || length <= 0) return false;
  std::string_view events{buffer.data(), static_cast<std::size_t>(length)};
  const auto told = readEvent(events);
  return told && told->folder == handle;
}

}  // namespace

std::shared_ptr<FanotifySource> FanotifySource::open(const FileHandle& root, int first,
                                                     std::uint32_t deafTo) {
  if (!readsAllFolders() || !hasLastingHandles(root)) return nullptr;
  const auto handle = FolderHandle::of(root);
  if (!handle) return nullptr;
  FileHandle group{fanotify_init(FAN_CLASS_NOTIF | FAN_CLOEXEC | FAN_NONBLOCK | FAN_REPORT_DFID_NAME, 0)};
  if (!group || !tellsBy(*handle, group, root)) return nullptr;
  const std::uint64_t mask = markMask & ~std::uint64_t{deafTo};
  if (fanotify_mark(group.get(), FAN_MARK_ADD | FAN_MARK_FILESYSTEM, mask, root.get(), nullptr) != 0) {
    return nullptr;
  }
  std::shared_ptr<FanotifySource> source{new FanotifySource(std::move(group), first)};
  source->handles_.add(*handle);
  return source;
}

std::expected<int, int> FanotifySource::watch(const FileHandle& folder) {
  const auto handle = FolderHandle::of(folder);
  if (!handle) return std::unexpected(handle.error());
  const std::lock_guard lock(mutex_);
  return handles_.add(*handle);
}

void FanotifySource::unwatch(int watch) {
  const std::lock_guard lock(mutex_);
  handles_.drop(watch);
}

// Equal events are queued once, so it is their number that tells when those of now have been read. Read
// later, one of a folder that is watched meanwhile is one too many at worst: it is listed after it is
// watched.
std::optional<std::size_t> FanotifySource::fetch(EventBacklog& backlog) {
  int queued = 0;
  if (ioctl(group_.get(), FIONREAD, &queued) != 0) return std::nullopt;
  const std::size_t wanted = static_cast<std::size_t>(queued) / sizeof(fanotify_event_metadata);
  buffer_.resize(bufferSize);
  std::size_t told = 0;
  for (std::size_t count = 0; count < wanted;) {
    const ssize_t length = read(group_.get(), buffer_.data(), buffer_.size());
    if (length < 0 && errno == EINTR) continue;
    if (length < 0 && errno == EAGAIN) break;
    if (length <= 0) return std::nullopt;
    const auto size = static_cast<std::size_t>(length);
    std::vector<char> piece = backlog.room();
    const bool understood = take({buffer_.data(), size}, piece, count);
    backlog.add(std::move(piece));
    if (!understood) return std::nullopt;
    told += size;
  }
  return told;
}

// Keeps what is told of watched folders, and counts all of it.
bool FanotifySource::take(std::string_view events, std::vector<char>& piece, std::size_t& count) const {
  const std::lock_guard lock(mutex_);
  while (!events.empty()) {
    const auto told = readEvent(events);
    if (!told) return false;
    ++count;
    const int watch = told->folder ? handles_.find(*told->folder) : FolderHandles::none;
    if (watch == FolderHandles::none && (told->what & FAN_Q_OVERFLOW) == 0) continue;
    EventBacklog::append(piece, {watch, static_cast<std::uint32_t>(told->what), told->name});
  }
  return true;
}

std::size_t FanotifySource::watchLimit() const {
  return std::numeric_limits<int>::max();
}

std::size_t FanotifySource::memory() const {
  const std::lock_guard lock(mutex_);
  return handles_.memory();
}

}  // namespace spacemint
