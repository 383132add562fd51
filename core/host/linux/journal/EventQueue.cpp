#include "core/host/linux/journal/EventQueue.h"

#include "core/base/Translation.h"

#include <sys/epoll.h>

#include <cerrno>
#include <utility>

namespace spacemint {

std::expected<EventQueue, Error> EventQueue::open() {
  auto inotify = InotifySource::open();
  if (!inotify) return std::unexpected(std::move(inotify).error());
  EventQueue queue{FileHandle{epoll_create1(EPOLL_CLOEXEC)}, std::move(*inotify)};
  if (!queue.ready_ || !queue.poll(*queue.inotify_)) {
    return std::unexpected(systemError(i18n("watching folders"), errno));
  }
  return queue;
}

EventQueue::EventQueue(FileHandle ready, std::shared_ptr<InotifySource> inotify)
    : ready_(std::move(ready)),
      inotify_(std::move(inotify)),
      source_(inotify_) {}

bool EventQueue::poll(const EventSource& source) {
  epoll_event event{.events = EPOLLIN, .data = {}};
  return epoll_ctl(ready_.get(), EPOLL_CTL_ADD, source.descriptor(), &event) == 0;
}

// fanotify reports neither the removal nor the unmount of the root, so the root keeps an inotify watch with
// the same number. After the first `begin` only inotify is used: old watch numbers may still be in use.
std::expected<int, int> EventQueue::begin(const FileHandle& root, bool mayMark) {
  fanotify_.reset();
  source_ = inotify_;
  if (std::exchange(begun_, true)) return source_->watch(root);
  const auto watched = inotify_->watchItself(root);
  if (watched && mayMark) fanotify_ = FanotifySource::open(root, *watched);
  if (fanotify_ && !poll(*fanotify_)) fanotify_.reset();
  if (fanotify_) source_ = fanotify_;
  return source_->watch(root);
}

void EventQueue::fetch() {
  fetchFrom(*inotify_);
  if (fanotify_) fetchFrom(*fanotify_);
  if (events_.size() <= eventLimit) return;
  overflowed_ = true;
  events_.clear();
}

void EventQueue::fetchFrom(EventSource& source) {
  const auto count = source.fetch(events_);
  received_ += count.value_or(0);
  overflowed_ = overflowed_ || !count;
}

std::optional<FolderEvent> EventQueue::next() {
  if (events_.empty()) return std::nullopt;
  FolderEvent event = std::move(events_.front());
  events_.pop_front();
  return event;
}

std::size_t EventQueue::takeReceived() {
  return std::exchange(received_, 0);
}

}  // namespace spacemint
