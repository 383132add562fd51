#include "core/host/linux/journal/InotifySource.h"

#include "core/base/Translation.h"

#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <span>
#include <utility>

namespace spacemint {

namespace {

// CLOSE_WRITE reports writes through a memory mapping, MODIFY writes to a file that stays open, ATTRIB a
// folder that becomes readable. Without MASK_ADD, watching a folder again would lose events for an instant.
constexpr std::uint32_t selfMask = IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR | IN_MASK_ADD;
constexpr std::uint32_t watchMask =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB | selfMask;
constexpr std::size_t inotifyBufferSize = std::size_t{1} << 16U;

std::size_t kernelLimit(const char* name) {
  std::size_t limit = 0;
  std::ifstream(std::string{"/proc/sys/fs/inotify/"} + name) >> limit;
  return limit;
}

std::string adviceFor(const char* name) {
  const std::size_t limit = kernelLimit(name);
  return "sysctl fs.inotify." + std::string{name} + "=" + std::to_string(limit * 4);
}

// The link /proc/self is read once, because following it would add to the cost of every watch.
std::string pathOfOpenFiles() {
  std::array<char, 32> process{};
  const ssize_t length = readlink("/proc/self", process.data(), process.size());
  const std::string own = length > 0 ? std::string(process.data(), static_cast<std::size_t>(length)) : "self";
  return "/proc/" + own + "/fd/";
}

// Appends the events in the kernel's format; how many there were.
std::size_t parseEvents(std::span<const char> bytes, std::deque<FolderEvent>& events) {
  std::size_t count = 0;
  while (bytes.size() >= sizeof(inotify_event)) {
    inotify_event head{};
    std::memcpy(&head, bytes.data(), sizeof head);
    const char* name = bytes.data() + sizeof head;
    events.push_back({.watch = head.wd, .mask = head.mask, .name = head.len > 0 ? name : ""});
    bytes = bytes.subspan(sizeof head + head.len);
    ++count;
  }
  return count;
}

}  // namespace

std::expected<std::shared_ptr<InotifySource>, Error> InotifySource::open() {
  FileHandle handle{inotify_init1(IN_CLOEXEC | IN_NONBLOCK)};
  if (!handle) {
    Error error = systemError(i18n("watching folders"), errno);
    if (error.code == EMFILE) {
      error.message = i18n("{problem}; as an administrator, \"{command}\" allows more programs to",
                           {{"problem", error.message}, {"command", instanceLimitAdvice()}});
    }
    return std::unexpected(std::move(error));
  }
  return std::shared_ptr<InotifySource>{new InotifySource(std::move(handle))};
}

InotifySource::InotifySource(FileHandle handle) : handle_(std::move(handle)), openFiles_(pathOfOpenFiles()) {}

std::expected<int, int> InotifySource::watch(const FileHandle& folder) {
  return watch(folder, watchMask);
}

std::expected<int, int> InotifySource::watchItself(const FileHandle& folder) {
  return watch(folder, selfMask);
}

std::expected<int, int> InotifySource::watch(const FileHandle& folder, std::uint32_t mask) const {
  const std::string path = openFiles_ + std::to_string(folder.get());
  const int watch = inotify_add_watch(handle_.get(), path.c_str(), mask);
  if (watch < 0) return std::unexpected(errno);
  return watch;
}

void InotifySource::unwatch(int watch) {
  inotify_rm_watch(handle_.get(), watch);
}

// Reads no more bytes than are queued at the call, so that a steady stream of events cannot keep it here.
std::optional<std::size_t> InotifySource::fetch(std::deque<FolderEvent>& events) {
  int queued = 0;
  if (ioctl(handle_.get(), FIONREAD, &queued) != 0) return std::nullopt;
  buffer_.resize(inotifyBufferSize);
  std::size_t count = 0;
  while (queued > 0) {
    const ssize_t length = read(handle_.get(), buffer_.data(), buffer_.size());
    if (length < 0 && errno == EINTR) continue;
    if (length < 0 && errno == EAGAIN) break;
    if (length <= 0) return std::nullopt;
    count += parseEvents({buffer_.data(), static_cast<std::size_t>(length)}, events);
    queued -= static_cast<int>(length);
  }
  return count;
}

std::size_t InotifySource::watchLimit() const {
  const std::size_t granted = kernelLimit("max_user_watches");
  return granted - granted / 8;
}

std::string watchLimitAdvice() {
  return adviceFor("max_user_watches");
}

std::string instanceLimitAdvice() {
  return adviceFor("max_user_instances");
}

}  // namespace spacemint
