#include "core/host/linux/journal/InotifySource.h"

#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <utility>

namespace spacemint {

namespace {

// CLOSE_WRITE tells of writes through a mapping, MODIFY of those of a file that stays open, ATTRIB of a
// folder that becomes readable. Without MASK_ADD, watching a folder again would stop its events for an
// instant.
constexpr std::uint32_t selfMask = IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR | IN_MASK_ADD;
constexpr std::uint32_t watchMask =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB | selfMask;
constexpr std::size_t pieceSize = std::size_t{1} << 16U;

std::size_t kernelLimit(const char* name) {
  std::size_t limit = 0;
  std::ifstream(std::string{"/proc/sys/fs/inotify/"} + name) >> limit;
  return limit;
}

std::string adviceFor(const char* name) {
  const std::size_t limit = kernelLimit(name);
  return "sysctl fs.inotify." + std::string{name} + "=" + std::to_string(limit * 4);
}

// Where this process's handles are. The link /proc/self is read only once, because following it would add to
// the cost of every watch.
std::string ownHandles() {
  std::array<char, 32> process{};
  const ssize_t length = readlink("/proc/self", process.data(), process.size());
  const std::string own = length > 0 ? std::string(process.data(), static_cast<std::size_t>(length)) : "self";
  return "/proc/" + own + "/fd/";
}

}  // namespace

std::expected<std::shared_ptr<InotifySource>, Error> InotifySource::open(std::uint32_t deafTo) {
  FileHandle handle{inotify_init1(IN_CLOEXEC | IN_NONBLOCK)};
  if (!handle) {
    Error error = systemError("watching folders", errno);
    if (error.code == EMFILE) {
      error.message += "; as an administrator, \"" + instanceLimitAdvice() + "\" allows more programs to";
    }
    return std::unexpected(std::move(error));
  }
  return std::shared_ptr<InotifySource>{new InotifySource(std::move(handle), watchMask & ~deafTo)};
}

InotifySource::InotifySource(FileHandle handle, std::uint32_t mask)
    : handle_(std::move(handle)),
      mask_(mask),
      handles_(ownHandles()) {}

std::expected<int, int> InotifySource::watch(const FileHandle& folder, std::uint32_t mask) const {
  const std::string path = handles_ + std::to_string(folder.get());
  const int watch = inotify_add_watch(handle_.get(), path.c_str(), mask);
  if (watch < 0) return std::unexpected(errno);
  return watch;
}

std::expected<int, int> InotifySource::watchItself(const FileHandle& folder) {
  return watch(folder, selfMask);
}

void InotifySource::unwatch(int watch) {
  inotify_rm_watch(handle_.get(), watch);
}

std::optional<std::size_t> InotifySource::fetch(EventBacklog& backlog) {
  int queued = 0;
  if (ioctl(handle_.get(), FIONREAD, &queued) != 0) return std::nullopt;
  std::size_t told = 0;
  while (std::cmp_less(told, queued)) {
    std::vector<char> piece = backlog.room();
    piece.resize(pieceSize);
    const ssize_t length = read(handle_.get(), piece.data(), piece.size());
    const int error = length < 0 ? errno : 0;
    piece.resize(static_cast<std::size_t>(std::max(length, ssize_t{0})));
    told += piece.size();
    backlog.add(std::move(piece));
    if (error == EINTR) continue;
    if (error != 0 && error != EAGAIN) return std::nullopt;
    if (length <= 0) break;
  }
  return told;
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
