#pragma once

#include "core/host/FileHandle.h"
#include "core/host/FolderListing.h"

#include <compare>
#include <cstdint>
#include <memory>
#include <string_view>

namespace spacemint {

/// How an observer recognises a folder. The generation distinguishes a folder from a removed one that had the
/// same id.
struct FolderRef {
  std::uint32_t id = ~std::uint32_t{0};
  std::uint32_t generation = 0;

  auto operator<=>(const FolderRef&) const = default;
};

/// Is called for every folder that a listing opens, before its entries are read. The calls come from every
/// thread that opens folders.
class FolderObserver {
 public:
  FolderObserver() = default;
  FolderObserver(const FolderObserver&) = delete;
  FolderObserver& operator=(const FolderObserver&) = delete;
  virtual ~FolderObserver() = default;

  virtual FolderRef openedRoot(const FileHandle& folder) = 0;
  virtual FolderRef opened(FolderRef parent, std::string_view name, const FileHandle& folder) = 0;
  /// The folder exists but cannot be opened.
  virtual void couldNotOpen(FolderRef parent, std::string_view name) = 0;
  /// The listing of the folder failed before its end.
  virtual void couldNotList(FolderRef folder) = 0;
};

/// The host's listing with an observer, which must outlive the listing and all folders opened from it.
std::unique_ptr<FolderListing> observedFolderListing(FolderObserver& observer);

}  // namespace spacemint
