#include "core/host/linux/journal/EventQueue.h"

#include <sys/epoll.h>

#include <cerrno>
#include <utility>

namespace spacemint {

std::expected<EventQueue, Error> EventQueue::open(Options options) {
  auto inotify = InotifySource::open(options.deafTo);
  if (!inotify) return std::unexpected(std::move(inotify).error());
  EventQueue queue{options, FileHandle{epoll_create1(EPOLL_CLOEXEC)}, std::move(*inotify)};
  if (!queue.ready_ || !queue.listenTo(*queue.inotify_)) {
    return std::unexpected(systemError("watching folders", errno));
  }
  return queue;
}

EventQueue::EventQueue(Options options, FileHandle ready, std::shared_ptr<InotifySource> inotify)
    : options_(options),
      ready_(std::move(ready)),
      inotify_(std::move(inotify)) {}

bool EventQueue::listenTo(const EventSource& source) {
  epoll_event event{.events = EPOLLIN, .data = {}};
  return epoll_ctl(ready_.get(), EPOLL_CTL_ADD, source.descriptor(), &event) == 0;
}

// A mark tells neither that the root goes nor that its file system is unmounted, which ends the mark. So the
// root itself stays watched, and has one number with both. A queue that was in use may have other watches
// of those numbers.
std::expected<int, int> EventQueue::begin(const FileHandle& root) {
  fanotify_.reset();
  if (options_.marksFileSystem && !std::exchange(begun_, true)) {
    const auto watched = inotify_->watchItself(root);
    if (watched) fanotify_ = FanotifySource::open(root, *watched, options_.deafTo);
    if (fanotify_ && !listenTo(*fanotify_)) fanotify_.reset();
  }
  return watch(root);
}

std::shared_ptr<EventSource> EventQueue::watcher() const {
  if (fanotify_) return fanotify_;
  return inotify_;
}

void EventQueue::fetch() {
  fetchFrom(*inotify_);
  if (fanotify_) fetchFrom(*fanotify_);
  if (fetched() - taken() <= backlogLimit) return;
  broken_ = true;
  backlog_.giveUp();
}

void EventQueue::fetchFrom(EventSource& source) {
  const auto told = source.fetch(backlog_);
  heard_ += told.value_or(0);
  broken_ = broken_ || !told;
}

std::uint64_t EventQueue::takeHeard() {
  return std::exchange(heard_, 0);
}

}  // namespace spacemint
