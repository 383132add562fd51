#pragma once

#include "core/host/linux/journal/EventSource.h"
#include "core/host/linux/journal/FolderHandles.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

namespace spacemint {

/// One fanotify mark on the whole file system, which only a process with CAP_SYS_ADMIN and
/// CAP_DAC_READ_SEARCH may set. Events name folders by file handle. To watch a folder means to remember its
/// handle: the kernel keeps nothing for it and sets no limit. Events of folders that are not watched are
/// dropped.
class FanotifySource final : public EventSource {
 public:
  /// Marks the file system of an open folder, and watches the folder with the number `first`. Null when the
  /// system does not allow it or the file system has no lasting handles.
  static std::shared_ptr<FanotifySource> open(const FileHandle& root, int first);

  int descriptor() const override { return group_.get(); }
  std::expected<int, int> watch(const FileHandle& folder) override;
  void unwatch(int watch) override;
  std::optional<std::size_t> fetch(std::deque<FolderEvent>& events) override;
  std::size_t watchLimit() const override;
  std::size_t memory() const override;

 private:
  FanotifySource(FileHandle group, int first) : group_(std::move(group)), handles_(first) {}
  std::optional<std::size_t> parse(std::string_view bytes, std::deque<FolderEvent>& events) const;

  FileHandle group_;
  std::vector<char> buffer_;
  mutable std::mutex mutex_;
  FolderHandles handles_;  // guarded by the mutex
};

}  // namespace spacemint
