#include "core/host/VolumeInfo.h"

#include "core/host/UserFolders.h"
#include "core/host/VolumeTable.h"
#include "core/host/linux/Disks.h"
#include "core/host/linux/MountTable.h"
#include "core/host/linux/VolumesOfMounts.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

namespace spacemint {

namespace {

namespace fs = std::filesystem;

std::optional<Mount> mountOf(const std::string& path) {
  struct statx status {};
  if (statx(AT_FDCWD, path.c_str(), AT_STATX_DONT_SYNC, STATX_MNT_ID, &status) != 0) return std::nullopt;
  const auto mounts = currentMounts();
  const auto found = std::ranges::find(mounts, status.stx_mnt_id, &Mount::id);
  if (found == mounts.end()) return std::nullopt;
  return *found;
}

std::optional<dev_t> deviceOf(const fs::path& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  return status.st_dev;
}

// The highest folder above `path` on the same device. Used in place of the mount point if the mount table
// does not contain the mount, as in a chroot.
std::string topOfDevice(const std::string& path) {
  const auto device = deviceOf(path);
  fs::path top = fs::path{path}.lexically_normal();
  while (top.has_relative_path() && deviceOf(top.parent_path()) == device) top = top.parent_path();
  return top;
}

std::optional<std::string> nameOf(const std::string& mountPoint) {
  return mountPoint == "/" ? std::nullopt : std::optional{mountPoint};
}

// As in the list of volumes; the label of another one, such as a network file system.
std::optional<std::string> nameOf(const Mount& mount) {
  const auto volumes = localVolumes();
  const auto found = std::ranges::find(volumes, mount.device, &Volume::pool);
  if (found != volumes.end()) return found->name;
  const auto label = labelOf(diskOf(mount));
  return label ? label : nameOf(mount.mountPoint);
}

}  // namespace

std::optional<VolumeInfo> readVolumeInfo(const std::string& path) {
  const auto space = readSpace(path);
  if (!space) return std::nullopt;
  const auto mount = mountOf(path);
  return VolumeInfo{.name = mount ? nameOf(*mount) : nameOf(topOfDevice(path)),
                    .total = space->total,
                    .available = space->free};
}

std::optional<std::string> mountPointOf(const std::string& path) {
  const auto mount = mountOf(path);
  if (!mount) return std::nullopt;
  return mount->mountPoint;
}

bool mayHang(const std::string& path) {
  const std::string plain = fs::path{path}.lexically_normal().string();
  const auto mounts = currentMounts();
  const Mount* holder = holderOf(plain, mounts);
  return holder != nullptr && isRemote(holder->fileSystem);
}

std::string startupVolume() {
  return mountPointOf(UserFolders::home()).value_or("/");
}

DiskTraits diskTraits(const std::string& path) {
  const auto mount = mountOf(path);
  if (!mount) return {};
  const std::uint64_t disk = diskOf(*mount);
  return {.isRotational = isRotational(disk), .requestsAtOnce = requestsAtOnce(disk)};
}

}  // namespace spacemint
