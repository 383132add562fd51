#include "core/host/VolumeInfo.h"

#include "core/host/UserFolders.h"
#include "core/host/linux/MountTable.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>

namespace spacemint {

namespace {

namespace fs = std::filesystem;

// A file system may report any numbers: a product that does not fit 64 bits becomes the largest number.
Bytes bytesOf(fsblkcnt_t blocks, unsigned long blockSize) {
  Bytes bytes = 0;
  return __builtin_mul_overflow(blocks, blockSize, &bytes) ? std::numeric_limits<Bytes>::max() : bytes;
}

std::optional<Mount> mountOf(const std::string& path) {
  struct statx status {};
  if (statx(AT_FDCWD, path.c_str(), AT_STATX_DONT_SYNC, STATX_MNT_ID, &status) != 0) return std::nullopt;
  const auto mounts = currentMounts();
  const auto found = std::ranges::find(mounts, status.stx_mnt_id, &Mount::id);
  if (found == mounts.end()) return std::nullopt;
  return *found;
}

std::optional<std::uint64_t> blockDevice(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || !S_ISBLK(status.st_mode)) return std::nullopt;
  return status.st_rdev;
}

// The device number of the disk. A file system such as Btrfs has its own device number; the disk is the
// mount's source.
std::uint64_t diskOf(const Mount& mount) {
  return blockDevice(mount.source).value_or(mount.device);
}

// Decodes the name of a link in /dev/disk/by-label, in which special characters are written as \x and two
// hexadecimal digits.
std::string unescapedLabel(std::string_view text) {
  std::string label;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string digits{text.substr(i).starts_with("\\x") ? text.substr(i + 2).substr(0, 2) : ""};
    if (digits.size() == 2 && digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos) {
      label += static_cast<char>(std::stoi(digits, nullptr, 16));
      i += 3;
    } else {
      label += text[i];
    }
  }
  return label;
}

std::optional<std::string> labelOf(const Mount& mount) {
  std::error_code failed;
  const std::uint64_t disk = diskOf(mount);
  for (fs::directory_iterator link("/dev/disk/by-label", failed), end; !failed && link != end;
       link.increment(failed)) {
    if (blockDevice(link->path()) == disk) return unescapedLabel(link->path().filename().string());
  }
  return std::nullopt;
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

// True for file systems that depend on another computer or process. "fuseblk" is not among them: it is used
// for local disks, such as those with NTFS.
bool isRemote(std::string_view fileSystem) {
  constexpr std::string_view remote[] = {"9p",   "afs",  "autofs", "ceph",  "cifs",  "coda",
                                         "fuse", "gfs2", "nfs",    "ncpfs", "ocfs2", "smb3"};
  return fileSystem.starts_with("fuse.") || fileSystem == "nfs4" ||
         std::ranges::find(remote, fileSystem) != std::end(remote);
}

bool isAtOrBelow(std::string_view path, std::string_view folder) {
  return path.starts_with(folder) &&
         (folder.ends_with('/') || path.size() == folder.size() || path[folder.size()] == '/');
}

// A virtual disk reports "rotational" only because its hypervisor does not report the kind of disk.
bool isVirtual(const std::string& disk) {
  std::error_code failed;
  return fs::read_symlink(disk + "/device/subsystem", failed).filename() == "virtio";
}

}  // namespace

std::optional<VolumeInfo> readVolumeInfo(const std::string& path) {
  struct statvfs status {};
  if (statvfs(path.c_str(), &status) != 0) return std::nullopt;
  VolumeInfo info{.total = bytesOf(status.f_blocks, status.f_frsize),
                  .available = bytesOf(status.f_bavail, status.f_frsize)};
  const auto mount = mountOf(path);
  const auto label = mount ? labelOf(*mount) : std::nullopt;
  info.name = label ? *label : mount ? mount->mountPoint : topOfDevice(path);
  return info;
}

std::optional<std::string> mountPointOf(const std::string& path) {
  const auto mount = mountOf(path);
  if (!mount) return std::nullopt;
  return mount->mountPoint;
}

bool mayHang(const std::string& path) {
  const std::string plain = fs::path{path}.lexically_normal().string();
  const auto mounts = currentMounts();
  const Mount* holder = nullptr;
  for (const Mount& mount : mounts) {
    // If two file systems are mounted on the same folder, the later one is visible.
    if (isAtOrBelow(plain, mount.mountPoint) &&
        (holder == nullptr || mount.mountPoint.size() >= holder->mountPoint.size())) {
      holder = &mount;
    }
  }
  return holder != nullptr && isRemote(holder->fileSystem);
}

std::string startupVolume() {
  return mountPointOf(UserFolders::home()).value_or("/");
}

bool isOnRotationalDisk(const std::string& path) {
  const auto mount = mountOf(path);
  if (!mount) return false;
  const std::uint64_t disk = diskOf(*mount);
  const std::string device =
      "/sys/dev/block/" + std::to_string(major(disk)) + ":" + std::to_string(minor(disk));
  // A partition has no "queue" folder; its disk, the parent folder, has one.
  for (const std::string& folder : {device, device + "/.."}) {
    std::ifstream file(folder + "/queue/rotational");
    char answer = '0';
    if (file >> answer) return answer == '1' && !isVirtual(folder);
  }
  return false;
}

}  // namespace spacemint
