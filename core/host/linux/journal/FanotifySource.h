#pragma once

#include "core/host/linux/journal/EventSource.h"
#include "core/host/linux/journal/FolderHandles.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

namespace spacemint {

/// One mark on the whole file system (`fanotify`), which only an administrator's process may set. Events name
/// folders by handle. A watch is no more than the knowledge of a folder's handle: no limit, and nothing that
/// the kernel keeps. What happens in folders that are not watched is passed over.
class FanotifySource final : public EventSource {
 public:
  /// Marks the file system that an open folder is on, and watches the folder with the number `first`. Null
  /// where the system does not grant it or the file system's handles are not to be counted on.
  static std::shared_ptr<FanotifySource> open(const FileHandle& root, int first, std::uint32_t deafTo = 0);

  int descriptor() const override { return group_.get(); }
  std::expected<int, int> watch(const FileHandle& folder) override;
  void unwatch(int watch) override;
  std::optional<std::size_t> fetch(EventBacklog& backlog) override;
  std::size_t watchLimit() const override;
  std::size_t memory() const override;

 private:
  FanotifySource(FileHandle group, int first) : group_(std::move(group)), handles_(first) {}
  bool take(std::string_view events, std::vector<char>& piece, std::size_t& count) const;

  FileHandle group_;
  std::vector<char> buffer_;
  mutable std::mutex mutex_;
  FolderHandles handles_;  // by the mutex
};

}  // namespace spacemint
