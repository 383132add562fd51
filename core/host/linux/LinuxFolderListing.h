#pragma once

#include "core/host/FileHandle.h"
#include "core/host/FolderListing.h"
#include "core/host/FolderSum.h"

#include <compare>
#include <cstdint>
#include <memory>
#include <string_view>

namespace spacemint {

/// An observer's reference to a folder. The generation distinguishes a folder from a removed folder with the
/// same id.
struct FolderRef {
  std::uint32_t id = ~std::uint32_t{0};
  std::uint32_t generation = 0;

  auto operator<=>(const FolderRef&) const = default;
};

/// A listing calls these functions for every folder that it opens, before it reads the folder's entries.
/// Calls come from all threads that open folders.
class FolderObserver {
 public:
  FolderObserver() = default;
  FolderObserver(const FolderObserver&) = delete;
  FolderObserver& operator=(const FolderObserver&) = delete;
  virtual ~FolderObserver() = default;

  /// `places` are the mounts that the listing will enter.
  virtual FolderRef openedRoot(const FileHandle& folder, const std::vector<ListedPlace>& places) = 0;
  virtual FolderRef opened(FolderRef parent, std::string_view name, const FileHandle& folder) = 0;
  /// The folder exists but cannot be opened.
  virtual void couldNotOpen(FolderRef parent, std::string_view name) = 0;
  /// The folder was listed to its end; `sum` is of all its entries.
  virtual void listed(FolderRef folder, const FolderSum& sum) = 0;
  /// The listing of the folder failed before its end, or for an entry.
  virtual void couldNotList(FolderRef folder) = 0;
};

/// Reads what a scan needs to know about an entry of an open folder, except whether something is mounted
/// there. `name` ends in a NUL byte and stays the entry's name; `kind` is the DT_… of <dirent.h>. Any thread.
Entry readEntry(const FileHandle& folder, std::string_view name, unsigned char kind, std::uint64_t device);

/// In which order a listing asks for the facts of a folder's entries. It returns them in listing order.
enum class AskingOrder : std::uint8_t {
  listing,
  /// The facts lie on the disk in the order of the inodes, so that the head of a disk moves less.
  inode,
  /// By inode if the root's disk is known to rotate.
  byDisk
};

struct ListingOptions {
  AskingOrder order = AskingOrder::byDisk;
  /// May be null; must outlive the listing and all folders opened from it.
  FolderObserver* observer = nullptr;
};

/// The host's listing with options.
std::unique_ptr<FolderListing> linuxFolderListing(const ListingOptions& options);

}  // namespace spacemint
