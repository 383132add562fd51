#include "core/host/linux/journal/EventBacklog.h"

#include <sys/inotify.h>

#include <utility>

namespace spacemint {

std::vector<char> EventBacklog::room() {
  std::vector<char> piece = std::exchange(spare_, {});
  piece.clear();
  return piece;
}

void EventBacklog::add(std::vector<char> piece) {
  if (piece.empty()) {
    spare_ = std::move(piece);
    return;
  }
  added_ += piece.size();
  pieces_.push_back(std::move(piece));
}

void EventBacklog::append(std::vector<char>& piece, const FolderEvent& event) {
  inotify_event head{};
  head.wd = event.watch;
  head.mask = event.what;
  // As the kernel does it: ended by at least one zero, and the next record aligned.
  constexpr std::size_t step = alignof(inotify_event);
  if (!event.name.empty()) head.len = static_cast<std::uint32_t>((event.name.size() / step + 1) * step);
  const auto* bytes = reinterpret_cast<const char*>(&head);
  piece.insert(piece.end(), bytes, bytes + sizeof head);
  piece.insert(piece.end(), event.name.begin(), event.name.end());
  piece.resize(piece.size() + head.len - event.name.size());
}

std::optional<FolderEvent> EventBacklog::next() {
  if (!pieces_.empty() && at_ == pieces_.front().size()) {
    spare_ = std::move(pieces_.front());
    pieces_.pop_front();
    at_ = 0;
  }
  if (pieces_.empty()) return std::nullopt;
  const auto* event = reinterpret_cast<const inotify_event*>(pieces_.front().data() + at_);
  const std::size_t length = sizeof *event + event->len;
  at_ += length;
  taken_ += length;
  return FolderEvent{event->wd, event->mask, event->len > 0 ? std::string_view{event->name} : ""};
}

void EventBacklog::giveUp() {
  pieces_.clear();
  at_ = 0;
  taken_ = added_;
}

}  // namespace spacemint
