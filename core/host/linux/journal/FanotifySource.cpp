#include "core/host/linux/journal/FanotifySource.h"

#include "core/base/LockSoon.h"
#include "core/host/linux/FolderOpening.h"
#include "core/host/linux/journal/FileSystemTraits.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <sys/fanotify.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
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
// Events are passed on with the same bits as those of inotify.
static_assert(FAN_CREATE == IN_CREATE && FAN_DELETE == IN_DELETE && FAN_MOVED_FROM == IN_MOVED_FROM &&
              FAN_MOVED_TO == IN_MOVED_TO && FAN_MODIFY == IN_MODIFY && FAN_CLOSE_WRITE == IN_CLOSE_WRITE &&
              FAN_ATTRIB == IN_ATTRIB && FAN_ONDIR == IN_ISDIR && FAN_Q_OVERFLOW == IN_Q_OVERFLOW);

constexpr std::size_t fanotifyBufferSize = std::size_t{1} << 16U;

// With this capability every folder can be opened. Without it, nothing would report that a folder becomes
// readable: the folder could not be opened before, so its handle is unknown.
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

struct ParsedEvent {
  std::uint64_t mask = 0;
  std::optional<FolderHandle> folder;
  std::string_view name;
};

// Takes the folder and the name from one record of an event; other kinds of records are skipped.
void parseRecord(std::string_view record, ParsedEvent& event) {
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
  event.folder = FolderHandle::of(handle);
  if (head.info_type != FAN_EVENT_INFO_TYPE_DFID_NAME) return;
  event.name = rest.substr(nameAt);
  event.name = event.name.substr(0, event.name.find('\0'));
  if (event.name == ".") event.name = {};  // the folder itself
}

// Removes the first event from `bytes` and returns it; absent when it has an unknown format.
std::optional<ParsedEvent> parseEvent(std::string_view& bytes) {
  fanotify_event_metadata head{};
  if (!copyHead(head, bytes) || head.vers != FANOTIFY_METADATA_VERSION || head.event_len > bytes.size() ||
      head.event_len < head.metadata_len) {
    return std::nullopt;
  }
  ParsedEvent event{.mask = head.mask, .folder = {}, .name = {}};
  std::string_view records = bytes.substr(head.metadata_len, head.event_len - head.metadata_len);
  bytes.remove_prefix(head.event_len);
  fanotify_event_info_header record{};
  while (copyHead(record, records)) {
    if (record.len < sizeof record || record.len > records.size()) return std::nullopt;
    parseRecord(records.substr(0, record.len), event);
    records.remove_prefix(record.len);
  }
  return event;
}

// Whether events name the folder by the handle that `name_to_handle_at` gives. Causes one event to find out.
bool reportsHandle(const FolderHandle& handle, const FileHandle& group, const FileHandle& folder) {
  constexpr std::uint64_t mask = FAN_OPEN | FAN_ONDIR;
  if (fanotify_mark(group.get(), FAN_MARK_ADD, mask, folder.get(), nullptr) != 0) return false;
  const FileHandle opened = openFolder(folder.get(), ".");
  fanotify_mark(group.get(), FAN_MARK_REMOVE, mask, folder.get(), nullptr);
  std::array<char, 4'096> buffer{};
  const ssize_t length = read(group.get(), buffer.data(), buffer.size());
  if (!opened || length <= 0) return false;
  std::string_view bytes{buffer.data(), static_cast<std::size_t>(length)};
  const auto event = parseEvent(bytes);
  return event && event->folder == handle;
}

}  // namespace

std::shared_ptr<FanotifySource> FanotifySource::open(const FileHandle& root, int first) {
  if (!readsAllFolders() || !traitsOf(root).hasLastingHandles) return nullptr;
  const auto handle = FolderHandle::of(root);
  if (!handle) return nullptr;
  FileHandle group{fanotify_init(FAN_CLASS_NOTIF | FAN_CLOEXEC | FAN_NONBLOCK | FAN_REPORT_DFID_NAME, 0)};
  if (!group || !reportsHandle(*handle, group, root)) return nullptr;
  if (fanotify_mark(group.get(), FAN_MARK_ADD | FAN_MARK_FILESYSTEM, markMask, root.get(), nullptr) != 0) {
    return nullptr;
  }
  std::shared_ptr<FanotifySource> source{new FanotifySource(std::move(group), first)};
  source->handles_.add(*handle);
  return source;
}

std::expected<int, int> FanotifySource::watch(const FileHandle& folder) {
  const auto handle = FolderHandle::of(folder);
  if (!handle) return std::unexpected(handle.error());
  const std::unique_lock lock = lockSoon(mutex_);
  return handles_.add(*handle);
}

void FanotifySource::unwatch(int watch) {
  const std::lock_guard lock(mutex_);
  handles_.drop(watch);
}

// The kernel merges equal events, so their number, not their size, says when those queued at the call have
// been read. A later event that is read too is at worst redundant: its folder is listed after it is watched.
std::optional<std::size_t> FanotifySource::fetch(std::deque<FolderEvent>& events) {
  int queued = 0;
  if (ioctl(group_.get(), FIONREAD, &queued) != 0) return std::nullopt;
  const std::size_t wanted = static_cast<std::size_t>(queued) / sizeof(fanotify_event_metadata);
  buffer_.resize(fanotifyBufferSize);
  std::size_t count = 0;
  while (count < wanted) {
    const ssize_t length = read(group_.get(), buffer_.data(), buffer_.size());
    if (length < 0 && errno == EINTR) continue;
    if (length < 0 && errno == EAGAIN) break;
    if (length <= 0) return std::nullopt;
    const auto parsed = parse({buffer_.data(), static_cast<std::size_t>(length)}, events);
    if (!parsed) return std::nullopt;
    count += *parsed;
  }
  return count;
}

// Appends the events of watched folders and counts all events; absent when one has an unknown format.
std::optional<std::size_t> FanotifySource::parse(std::string_view bytes,
                                                 std::deque<FolderEvent>& events) const {
  const std::lock_guard lock(mutex_);
  std::size_t count = 0;
  while (!bytes.empty()) {
    const auto event = parseEvent(bytes);
    if (!event) return std::nullopt;
    ++count;
    const int watch = event->folder ? handles_.find(*event->folder) : FolderHandles::none;
    if (watch == FolderHandles::none && (event->mask & FAN_Q_OVERFLOW) == 0) continue;
    events.push_back(
        {.watch = watch, .mask = static_cast<std::uint32_t>(event->mask), .name = std::string{event->name}});
  }
  return count;
}

std::size_t FanotifySource::watchLimit() const {
  return std::numeric_limits<int>::max();
}

std::size_t FanotifySource::memory() const {
  const std::lock_guard lock(mutex_);
  return handles_.memory();
}

}  // namespace spacemint
