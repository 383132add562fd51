#pragma once

#include "core/base/Bytes.h"
#include "core/base/Date.h"
#include "core/base/Error.h"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

enum class EntryType : std::uint8_t { file, folder, other };

/// A mount that a listing enters.
struct ListedPlace {
  std::string mountPoint;
  /// The folder of the file system that is mounted (`VolumePlace::root`).
  std::string root;
  std::string fileSystem;
  /// `Volume::pool`.
  std::uint64_t pool = 0;

  auto operator<=>(const ListedPlace&) const = default;
};

/// A folder that a listing leaves out although it may take space on a disk.
struct LeftOut {
  enum class Kind : std::uint8_t {
    /// Another volume of this computer.
    volume,
    /// A snapshot or another copy of a subvolume, which shares its blocks with the original.
    snapshot,
    removable,
    remote,
    /// A file or folder that the user excludes from scans.
    excluded,
  };

  std::string path;
  Kind kind = Kind::volume;
  /// When the snapshot was made.
  std::optional<Date> created = {};
  /// The last known size of an excluded item.
  std::optional<Bytes> size = {};

  auto operator<=>(const LeftOut&) const = default;
};

/// One entry of a folder.
struct Entry {
  /// Valid until the next batch is read into the same buffer; followed by a NUL byte.
  std::string_view name;
  EntryType type = EntryType::other;
  /// An errno if the members below could not be read, or 0.
  int error = 0;
  std::uint32_t links = 1;
  /// The device number of a folder's volume; `otherVolume` for a mount point.
  std::uint64_t device = 0;
  /// When the content last changed, in seconds since 1970-01-01 00:00:00 UTC.
  std::int64_t modified = 0;
  Bytes allocated = 0;
  /// Of the content, in bytes. Unlike `allocated`, it counts holes and does not count the rest of the last
  /// block.
  Bytes length = 0;

  static constexpr std::uint64_t otherVolume = ~std::uint64_t{0};
};

/// Memory for a batch of entries. Every thread that lists folders reuses its own buffer.
struct ListingBuffer {
  static constexpr std::size_t size = 262'144;

  /// Not initialized, so that unused pages occupy no memory.
  std::unique_ptr<std::byte[]> bytes = std::make_unique_for_overwrite<std::byte[]>(size);
  std::vector<Entry> entries;
};

/// Some entries of a folder in listing order; empty at the end of the folder.
struct Batch {
  std::span<const Entry> entries;
  /// An errno if the listing ended early, or 0.
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

  /// The device number of the root's volume.
  virtual std::uint64_t device() const = 0;

  struct Facts {
    /// The index of the folder's mount in `FolderListing::places`.
    std::size_t place = 0;
    /// Bytes allocated for the folder itself, that is, for its table of names.
    Bytes ownSize = 0;
  };
  virtual Facts facts() const { return {}; }

  /// Returns the next entries, all of `buffer.entries`. Each entry is returned once, including hidden ones,
  /// excluding "." and "..". Blocks for the disk.
  virtual Batch nextBatch(ListingBuffer& buffer) = 0;

  /// Opens a subfolder relative to this handle without following a symbolic link. Fails with an errno: EXDEV
  /// for a folder that is left out; ENOENT, ENOTDIR or ELOOP if the folder no longer exists.
  virtual std::expected<std::unique_ptr<OpenFolder>, int> openSubfolder(const std::string& name) = 0;

  /// The caller will not open this subfolder, whose contents so stay unknown.
  virtual void leaveOut(const std::string& /*name*/) {}
};

/// Opens a root folder for listing.
class FolderListing {
 public:
  FolderListing() = default;
  FolderListing(const FolderListing&) = delete;
  FolderListing& operator=(const FolderListing&) = delete;
  virtual ~FolderListing() = default;

  /// Opens the folder at `root`. Follows symbolic links in `root`. Subfolders that are left out cannot be
  /// opened from the result.
  virtual std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string& root) = 0;

  /// The mounts that the listing of the last opened root enters, the root's first; empty if unknown.
  virtual std::vector<ListedPlace> places() const { return {}; }
  /// What the listing of the last opened root left out so far, by path.
  virtual std::vector<LeftOut> leftOut() const { return {}; }
};

/// The folder whose listing covers all volumes.
inline constexpr std::string_view wholeDisk = "/";

/// The listing of this computer's file systems. Never opens files. Enters the subvolumes and mounts of the
/// root's volume, each of its folders once; below `wholeDisk` those of all `localVolumes`. Never enters
/// snapshots, removable disks, network file systems or the kernel's own file systems.
std::unique_ptr<FolderListing> hostFolderListing();

/// `places` of a listing of `root`, without listing it. Empty if it cannot be opened.
std::vector<ListedPlace> hostListingPlaces(const std::string& root);

/// Raises the process's limit of open files to `wanted`, or as far as the system allows, and returns the
/// limit. Never lowers it. Returns 0 if the limit cannot be read.
std::size_t raiseOpenFileLimit(std::size_t wanted);

}  // namespace spacemint
