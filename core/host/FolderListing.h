#pragma once

#include "core/base/Bytes.h"
#include "core/base/Error.h"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

enum class EntryType : std::uint8_t { file, folder, other };

/// One entry of a folder.
struct Entry {
  /// Valid until the next batch is read into the same buffer; followed by a NUL byte.
  std::string_view name;
  EntryType type = EntryType::other;
  /// Why the facts below could not be read (an errno), or 0.
  int error = 0;
  std::uint32_t links = 1;
  /// The volume that a folder is on; `otherVolume` for what something else is mounted on.
  std::uint64_t device = 0;
  /// Content modification time, whole seconds since 1970.
  std::int64_t modified = 0;
  Bytes allocated = 0;

  static constexpr std::uint64_t otherVolume = ~std::uint64_t{0};
};

/// Memory for one batch of entries. Each listing thread reuses its own buffer.
struct ListingBuffer {
  static constexpr std::size_t size = 262'144;

  /// Not initialised, so that unused pages take no memory.
  std::unique_ptr<std::byte[]> bytes = std::make_unique_for_overwrite<std::byte[]>(size);
  std::vector<Entry> entries;
};

/// Some entries of a folder in listing order; none at the folder's end.
struct Batch {
  std::span<const Entry> entries;
  /// Why the listing ended early (an errno), or 0.
  int error = 0;
};

/// An open folder whose entries are read once, batch by batch. The handle is closed with the object.
///
/// One thread at a time reads batches. Subfolders may be opened from several threads at once.
class OpenFolder {
 public:
  OpenFolder() = default;
  OpenFolder(const OpenFolder&) = delete;
  OpenFolder& operator=(const OpenFolder&) = delete;
  virtual ~OpenFolder() = default;

  /// The volume that the folder is on.
  virtual std::uint64_t device() const = 0;

  /// Every entry once, hidden ones included, never "." and "..".
  virtual Batch nextBatch(ListingBuffer& buffer) = 0;

  /// Opens a subfolder relative to this handle without following a symbolic link. Fails with an errno: EXDEV
  /// for a folder on another volume, ENOENT, ENOTDIR or ELOOP for one that is no longer there.
  virtual std::expected<std::unique_ptr<OpenFolder>, int> openSubfolder(const std::string& name) = 0;
};

/// Opens a root folder for listing.
class FolderListing {
 public:
  FolderListing() = default;
  FolderListing(const FolderListing&) = delete;
  FolderListing& operator=(const FolderListing&) = delete;
  virtual ~FolderListing() = default;

  /// Opens the folder at `root`, following a symbolic link given as the root itself. What is opened from it
  /// stays on its volume.
  virtual std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string& root) = 0;
};

/// The listing of this system's own disks. Never opens file contents, nor what is mounted below the root.
std::unique_ptr<FolderListing> hostFolderListing();

/// How many folders a process may hold open on this system at once, after raising the limit to `wanted` as
/// far as that is allowed. It is never lowered.
std::size_t raiseOpenFileLimit(std::size_t wanted);

}  // namespace spacemint
