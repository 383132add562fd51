#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string_view>
#include <vector>

namespace spacemint {

/// What the kernel tells of a watched folder.
struct FolderEvent {
  int watch = 0;
  /// IN_… bits.
  std::uint32_t what = 0;
  /// The entry that it is about; empty for the folder itself. Valid until the next event is asked for.
  std::string_view name;
};

/// Events that were fetched and not yet handled: pieces of memory with `inotify_event` records one after the
/// other. One thread.
class EventBacklog {
 public:
  /// An empty piece to fill; the memory of one that was used up.
  std::vector<char> room();
  /// Records; or none, and the piece is kept for the next time.
  void add(std::vector<char> piece);
  /// Appends one record to a piece.
  static void append(std::vector<char>& piece, const FolderEvent& event);

  std::optional<FolderEvent> next();
  void giveUp();
  /// Bytes added, and bytes given out by `next` or given up, since the beginning.
  std::uint64_t added() const { return added_; }
  std::uint64_t taken() const { return taken_; }

 private:
  std::deque<std::vector<char>> pieces_;
  std::vector<char> spare_;
  std::size_t at_ = 0;  // how much of the first of them was given out
  std::uint64_t added_ = 0;
  std::uint64_t taken_ = 0;
};

}  // namespace spacemint
