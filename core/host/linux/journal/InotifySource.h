#pragma once

#include "core/base/Error.h"
#include "core/host/linux/journal/EventSource.h"

#include <cstdint>
#include <memory>
#include <string>

namespace spacemint {

/// A watch on each folder (`inotify`), which every user may have.
class InotifySource final : public EventSource {
 public:
  /// Fails with EMFILE when the user has as many instances as the kernel grants (`inotify_init1`). Events of
  /// the kinds in `deafTo` (IN_… bits) are not asked for.
  static std::expected<std::shared_ptr<InotifySource>, Error> open(std::uint32_t deafTo = 0);

  int descriptor() const override { return handle_.get(); }
  std::expected<int, int> watch(const FileHandle& folder) override { return watch(folder, mask_); }
  /// Tells only of the folder itself: that it moves, is deleted, or its volume is unmounted.
  std::expected<int, int> watchItself(const FileHandle& folder);
  void unwatch(int watch) override;
  std::optional<std::size_t> fetch(EventBacklog& backlog) override;
  /// An eighth of what the kernel grants a user is left to others.
  std::size_t watchLimit() const override;
  std::size_t memory() const override { return 0; }

 private:
  InotifySource(FileHandle handle, std::uint32_t mask);
  std::expected<int, int> watch(const FileHandle& folder, std::uint32_t mask) const;

  FileHandle handle_;
  std::uint32_t mask_;
  std::string handles_;
};

/// The line that raises a limit of this kernel until the next boot, as an administrator would type it.
std::string watchLimitAdvice();
std::string instanceLimitAdvice();

}  // namespace spacemint
