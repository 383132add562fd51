#include "core/host/VolumeTable.h"

#include "core/base/AsciiText.h"
#include "core/base/Log.h"
#include "core/host/UserFolders.h"
#include "core/host/VolumeInfo.h"
#include "core/host/linux/Disks.h"
#include "core/host/linux/FolderOpening.h"
#include "core/host/linux/Subvolume.h"
#include "core/host/linux/VolumesOfMounts.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <limits>
#include <mutex>
#include <set>
#include <thread>

namespace spacemint {

namespace {

namespace fs = std::filesystem;

// A file system may report any numbers: a product that does not fit 64 bits becomes the largest number.
Bytes bytesOf(fsblkcnt_t blocks, unsigned long blockSize) {
  Bytes bytes = 0;
  return __builtin_mul_overflow(blocks, blockSize, &bytes) ? std::numeric_limits<Bytes>::max() : bytes;
}

std::int64_t countOf(fsfilcnt_t count) {
  return static_cast<std::int64_t>(std::min<fsfilcnt_t>(count, std::numeric_limits<std::int64_t>::max()));
}

std::optional<MountTop> topOf(const Mount& mount) {
  struct statx status {};
  constexpr int flags = AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT | AT_SYMLINK_NOFOLLOW;
  if (statx(AT_FDCWD, mount.mountPoint.c_str(), flags, STATX_TYPE | STATX_INO | STATX_MNT_ID, &status) != 0) {
    return std::nullopt;
  }
  return MountTop{.mountId = status.stx_mnt_id,
                  .identity = {makedev(status.stx_dev_major, status.stx_dev_minor), status.stx_ino},
                  .isFolder = S_ISDIR(status.stx_mode)};
}

std::string textOfFile(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>{file}, {}};
}

// The home folder as the mount table spells it.
std::string realHome() {
  const std::string home = UserFolders::home();
  if (mayHang(home)) return home;
  std::error_code failed;
  const fs::path real = fs::canonical(home, failed);
  return failed ? home : real.string();
}

bool isWhereDisksArePluggedIn(const Volume& volume) {
  return std::ranges::all_of(volume.places, [](const VolumePlace& place) {
    return isAtOrBelow(place.mountPoint, "/media") || isAtOrBelow(place.mountPoint, "/run/media");
  });
}

bool isSnapshot(const VolumePlace& place) {
  if (place.mountPoint == "/" || !place.top || place.top->inode != Subvolume::topInode) return false;
  const auto subvolume = subvolumeOf(openFolder(AT_FDCWD, place.mountPoint.c_str()));
  return subvolume && subvolume->isCopy && subvolume->isReadOnly;
}

// Completes what the mount table does not tell.
void describe(Volume& volume) {
  for (VolumePlace& place : volume.places) place.isSnapshot = isSnapshot(place);
  // The system's own volume has a name, and is not removable, even on a memory card.
  if (!volume.name.empty()) return;
  const std::uint64_t disk = diskOf({.device = volume.pool, .source = volume.source});
  volume.isRemovable = isWhereDisksArePluggedIn(volume) || isRemovableDisk(disk);
  volume.name = labelOf(disk).value_or(fs::path{volume.mountPoint()}.filename().string());
}

// Asks volumes that may hang on threads of their own. A thread that got no answer stays; as long as it does,
// its volume is not asked again.
class PatientReader {
 public:
  std::optional<Space> read(const Volume& volume) {
    {
      const std::lock_guard lock{mutex_};
      if (!asked_.insert(volume.pool).second) return std::nullopt;
    }
    std::promise<std::optional<Space>> promise;
    auto answer = promise.get_future();
    std::thread([this, path = volume.mountPoint(), pool = volume.pool,
                 promise = std::move(promise)]() mutable {
      promise.set_value(readSpace(path));
      const std::lock_guard lock{mutex_};
      asked_.erase(pool);
    }).detach();
    if (answer.wait_for(patience) == std::future_status::ready) return answer.get();
    log(LogLevel::info, volume.mountPoint() + " does not answer; its free space is unknown");
    return std::nullopt;
  }

 private:
  static constexpr std::chrono::milliseconds patience{500};

  std::mutex mutex_;
  std::set<std::uint64_t> asked_;
};

std::optional<Space> spaceOf(const Volume& volume) {
  // Never destroyed: its threads may outlive everything else.
  static auto& patient = *new PatientReader;
  return volume.mayHang ? patient.read(volume) : readSpace(volume.mountPoint());
}

}  // namespace

std::vector<Volume> localVolumes() {
  auto volumes = volumesOf(
      currentMounts(),
      {.localTypes = localTypes(textOfFile("/proc/filesystems")), .home = realHome(), .topOf = topOf});
  for (Volume& volume : volumes) describe(volume);
  return volumes;
}

std::optional<Space> readSpace(const std::string& path) {
  struct statvfs status {};
  if (statvfs(path.c_str(), &status) != 0) return std::nullopt;
  const auto bytes = [&](fsblkcnt_t blocks) { return bytesOf(blocks, status.f_frsize); };
  const fsblkcnt_t unused = std::min(status.f_bfree, status.f_blocks);
  const fsblkcnt_t available = std::min(status.f_bavail, unused);
  Space space{.total = bytes(status.f_blocks),
              .used = bytes(status.f_blocks - unused),
              .free = bytes(available),
              .heldBack = bytes(unused - available)};
  if (status.f_files > 0) space.files = {.total = countOf(status.f_files), .free = countOf(status.f_ffree)};
  return space;
}

std::vector<VolumeReading> readVolumes() {
  std::vector<VolumeReading> readings;
  for (Volume& volume : localVolumes()) {
    auto space = spaceOf(volume);
    readings.push_back({std::move(volume), space});
  }
  return readings;
}

}  // namespace spacemint
