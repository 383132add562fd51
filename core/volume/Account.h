#pragma once

#include "core/base/Date.h"
#include "core/host/DeletedFiles.h"
#include "core/host/VolumeTable.h"
#include "core/tree/Snapshot.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// What a scan found on one volume.
struct ScannedVolume {
  /// The scanned folder.
  std::string root;
  /// The end of the scan.
  Date date;
  /// In files, links and other items with a name, in bytes.
  Bytes files = 0;
  /// The blocks of the folders themselves, in bytes.
  Bytes folders = 0;
  /// Of `files`: small files that lie in the file system's own data (`CoveredPlace::inlineBytes`).
  Bytes inlined = 0;
  /// False if a part of the volume lies outside of the scanned folder, or may be excluded.
  bool isWhole = false;
  /// Items that could not be read, and the paths of the first of them.
  std::int64_t unread = 0;
  std::vector<std::string> unreadPaths = {};
  /// Snapshots and copies of subvolumes, which scans do not enter.
  std::vector<LeftOut> snapshots = {};
  /// The mount points of other volumes in the scanned folder.
  std::vector<std::string> otherVolumes = {};
};

/// What is read of a volume itself, in bytes.
struct VolumeFacts {
  Volume volume;
  Space space;
  /// As from `fileSystemOwnBytes`.
  std::optional<Bytes> ownBytes;
  /// Of all volumes.
  DeletedFiles deleted = {};
  /// The bytes that files share with each other or save by compression; a scan counts them in full.
  Bytes saved = 0;
};

/// Deleted files that the same programs still use.
struct HeldFiles {
  /// The names of the programs, each once.
  std::vector<std::string> programs;
  /// Their numbers.
  std::vector<int> pids;
  std::int64_t count = 0;
  /// The sum of the sizes that are known.
  Bytes size = 0;

  bool operator==(const HeldFiles&) const = default;
};

/// Why the rest of an account may differ from zero.
enum class RestCause : std::uint8_t {
  /// More is used than was found.
  unreadItems,
  snapshots,
  unmountedSubvolumes,
  othersPrograms,
  mappedFiles,
  unknownFileSystem,
  hiddenUnderMounts,
  /// Less is used than was found.
  sharedBlocks,
  /// Both.
  changesSinceScan
};

/// Where the space of a volume is:
///
///     used = files + folders + deleted + own - inlined - saved + rest
///     total = used + held back + free
///
/// All figures are in bytes.
struct Account {
  Volume volume;
  Space space;
  ScannedVolume scanned;
  /// Deleted files that programs still use, the largest first.
  std::vector<HeldFiles> held;
  Bytes deleted = 0;
  /// Programs of others, whose deleted files this user may not see.
  std::int64_t refusedPrograms = 0;
  /// The file system's own data; absent if unknown.
  std::optional<Bytes> ownBytes;
  Bytes saved = 0;
  /// What no part explains. Negative if more was found than is used. For a scan of a part of the volume it
  /// includes everything outside of the scanned folder.
  Bytes rest = 0;

  /// Everything except files and free space.
  Bytes notInFiles() const {
    return saturatingSubtract(saturatingSubtract(space.total, space.free), scanned.files);
  }
  /// `notInFiles` without what lies outside of the scanned folder.
  Bytes knownNotInFiles() const;
  /// Worth a card of its own: 500 MB, or 5 % of the used space.
  bool matters() const;
  /// The likely causes of `rest`, in the order of `RestCause`; empty for a scan of a part of the volume, and
  /// if `rest` is small: at most 4 MB or 1 % of the used space.
  std::vector<RestCause> causes() const;
};

/// What the scan found on the volume; absent if it measured nothing of the volume, or is of an earlier
/// version that did not store what it covers. Pure.
std::optional<ScannedVolume> scannedVolume(const Snapshot& scan, const Volume& volume);

/// Pure.
Account accountOf(VolumeFacts facts, ScannedVolume scanned);

/// The bytes that large files of the volume share or save by compression (`SharedFiles::saved`). Reads the
/// disk; any thread.
Bytes savedBytes(const Snapshot& scan, const Volume& volume);

/// Reads the volume that contains `path`, but not `saved`. Absent if the path is on none of
/// `localVolumes`, or if the volume does not answer. Takes up to a second: call it on a thread that nobody
/// waits for. Any thread.
std::optional<VolumeFacts> readVolumeFacts(const std::string& path);

}  // namespace spacemint
