#pragma once

#include "core/base/Error.h"
#include "core/host/linux/journal/EventSource.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace spacemint {

/// One inotify watch per folder. Needs no privilege.
class InotifySource final : public EventSource {
 public:
  /// Fails with EMFILE when the user has as many instances as the kernel allows (`inotify_init1`).
  static std::expected<std::shared_ptr<InotifySource>, Error> open();

  int descriptor() const override { return handle_.get(); }
  std::expected<int, int> watch(const FileHandle& folder) override;
  /// Reports only that the folder itself moves or is deleted, or that its volume is unmounted.
  std::expected<int, int> watchItself(const FileHandle& folder);
  void unwatch(int watch) override;
  std::optional<std::size_t> fetch(std::deque<FolderEvent>& events) override;
  /// Seven eighths of the user's limit. The rest is left to other programs.
  std::size_t watchLimit() const override;
  std::size_t memory() const override { return 0; }

 private:
  explicit InotifySource(FileHandle handle);
  std::expected<int, int> watch(const FileHandle& folder, std::uint32_t mask) const;

  FileHandle handle_;
  // The path of this process's open files under /proc.
  std::string openFiles_;
  std::vector<char> buffer_;
};

/// The command with which an administrator raises the limit until the next boot.
std::string watchLimitAdvice();
std::string instanceLimitAdvice();

}  // namespace spacemint
