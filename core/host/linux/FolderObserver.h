#pragma once

#include "core/host/FileHandle.h"

#include <cstdint>
#include <string_view>

namespace spacemint {

/// Follows a walk from folder to folder, so that watches are set while the disk is being measured anyway.
/// Called from every thread that opens folders.
class FolderObserver {
 public:
  /// How the observer knows a folder again.
  struct Seen {
    std::uint32_t id = ~std::uint32_t{0};
    std::uint32_t generation = 0;
  };

  FolderObserver() = default;
  FolderObserver(const FolderObserver&) = delete;
  FolderObserver& operator=(const FolderObserver&) = delete;
  virtual ~FolderObserver() = default;

  /// The root is open; its entries have not been read yet.
  virtual Seen openedRoot(const FileHandle& folder) = 0;
  /// So is the folder `name` of `parent`.
  virtual Seen opened(Seen parent, std::string_view name, const FileHandle& folder) = 0;
  /// The folder `name` is there but cannot be opened.
  virtual void couldNotOpen(Seen parent, std::string_view name) = 0;
  /// The folder could not be listed to its end.
  virtual void couldNotList(Seen folder) = 0;
};

}  // namespace spacemint
