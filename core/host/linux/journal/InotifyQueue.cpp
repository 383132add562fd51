#include "core/host/linux/journal/InotifyQueue.h"

#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <fstream>

namespace spacemint {

namespace {

// CLOSE_WRITE tells of writes through a mapping, MODIFY of those of a file that stays open, ATTRIB of a
// folder that becomes readable. Without MASK_ADD, watching a folder again would stop its events for an
// instant.
constexpr std::uint32_t watchMask = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_MODIFY |
                                    IN_CLOSE_WRITE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR |
                                    IN_MASK_ADD;
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

std::expected<InotifyQueue, Error> InotifyQueue::open(std::uint32_t deafTo) {
  FileHandle handle{inotify_init1(IN_CLOEXEC | IN_NONBLOCK)};
  if (!handle) {
    Error error = systemError("watching folders", errno);
    if (error.code == EMFILE) {
      error.message += "; as an administrator, \"" + instanceLimitAdvice() + "\" allows more programs to";
    }
    return std::unexpected(std::move(error));
  }
  return InotifyQueue{std::move(handle), watchMask & ~deafTo};
}

InotifyQueue::InotifyQueue(FileHandle handle, std::uint32_t mask) {
  watcher_.handle_ = std::make_shared<const FileHandle>(std::move(handle));
  watcher_.mask_ = mask;
  watcher_.handles_ = ownHandles();
}

std::expected<int, int> InotifyQueue::Watcher::watch(const FileHandle& folder) const {
  if (!handle_) return std::unexpected(EBADF);
  const int watch =
      inotify_add_watch(handle_->get(), (handles_ + std::to_string(folder.get())).c_str(), mask_);
  if (watch < 0) return std::unexpected(errno);
  return watch;
}

void InotifyQueue::unwatch(int watch) {
  inotify_rm_watch(descriptor(), watch);
}

void InotifyQueue::fetch() {
  int queued = 0;
  if (ioctl(descriptor(), FIONREAD, &queued) != 0) broken_ = true;
  while (queued > 0) {
    std::vector<char> piece = std::move(spare_);
    piece.resize(pieceSize);
    const ssize_t length = read(descriptor(), piece.data(), piece.size());
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) {
      broken_ = broken_ || (length < 0 && errno != EAGAIN);
      return;
    }
    piece.resize(static_cast<std::size_t>(length));
    queued -= static_cast<int>(length);
    fetched_ += static_cast<std::uint64_t>(length);
    backlog_.push_back(std::move(piece));
  }
  if (fetched_ - taken_ > backlogLimit) {
    broken_ = true;
    backlog_.clear();
    at_ = 0;
    taken_ = fetched_;
  }
}

std::optional<FolderEvent> InotifyQueue::next() {
  if (!backlog_.empty() && at_ == backlog_.front().size()) {
    spare_ = std::move(backlog_.front());
    backlog_.pop_front();
    at_ = 0;
  }
  if (backlog_.empty()) return std::nullopt;
  const auto* event = reinterpret_cast<const inotify_event*>(backlog_.front().data() + at_);
  const std::size_t length = sizeof *event + event->len;
  at_ += length;
  taken_ += length;
  return FolderEvent{event->wd, event->mask, event->len > 0 ? std::string_view{event->name} : ""};
}

std::size_t defaultWatchLimit() {
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
