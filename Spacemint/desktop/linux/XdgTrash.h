#pragma once

#include "Spacemint/desktop/TrashCan.h"

namespace spacemint {

/// The freedesktop.org trash, in which every file manager of the desktop finds things again: the one in the
/// user's data folder for what is on the same mount, else one in the top folder of the volume.
class XdgTrash final : public TrashCan {
 public:
  /// Renames, and never copies: fails with EXDEV where the item's file system has no trash of its own to
  /// give. Also fails for a path that is not absolute or ends in "." or ".." (EINVAL), for a mount point
  /// (EBUSY), and for a trash, what is in one and what contains one (EINVAL).
  std::expected<std::string, Error> move(const std::string& path) override;
};

}  // namespace spacemint
