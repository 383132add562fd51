#include "core/host/linux/Disks.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace spacemint {

namespace {

namespace fs = std::filesystem;

std::optional<std::uint64_t> blockDevice(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || !S_ISBLK(status.st_mode)) return std::nullopt;
  return status.st_rdev;
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

// A virtual disk reports "rotational" only because its hypervisor, or the file that it is made of, does not
// tell the kind of disk.
bool isVirtual(const std::string& disk) {
  std::error_code failed;
  const auto bus = fs::read_symlink(disk + "/device/subsystem", failed).filename();
  return bus == "virtio" || bus == "xen" || fs::exists(disk + "/loop", failed);
}

std::string sysFolder(std::uint64_t disk) {
  return "/sys/dev/block/" + std::to_string(major(disk)) + ":" + std::to_string(minor(disk));
}

// The number in a file of the disk's folder. A partition has no such file; its disk, the parent folder, has
// one.
std::optional<unsigned> numberOf(const std::string& folder, const std::string& name) {
  for (const std::string& place : {folder, folder + "/.."}) {
    std::ifstream file(place + "/" + name);
    unsigned answer = 0;
    if (file >> answer) return answer;
  }
  return std::nullopt;
}

// Whether the folder of a disk in /sys belongs to a plug-in disk, or one of the disks below it does.
bool isRemovable(const fs::path& folder) {
  std::error_code failed;
  const std::string device = fs::canonical(folder, failed).string();
  if (device.empty()) return false;
  if (device.contains("/usb") || device.contains("/mmc") || numberOf(device, "removable") == 1U) return true;
  // LUKS and LVM are on top of other disks.
  for (fs::directory_iterator below(device + "/slaves", failed), end; !failed && below != end;
       below.increment(failed)) {
    if (isRemovable(below->path())) return true;
  }
  return false;
}

}  // namespace

std::uint64_t diskOf(const Mount& mount) {
  return blockDevice(mount.source).value_or(mount.device);
}

std::optional<std::string> labelOf(std::uint64_t disk) {
  std::error_code failed;
  for (fs::directory_iterator link("/dev/disk/by-label", failed), end; !failed && link != end;
       link.increment(failed)) {
    if (blockDevice(link->path()) == disk) return unescapedLabel(link->path().filename().string());
  }
  return std::nullopt;
}

bool isRotational(std::uint64_t disk) {
  const std::string folder = sysFolder(disk);
  return numberOf(folder, "queue/rotational") == 1U && !isVirtual(folder) && !isVirtual(folder + "/..");
}

// A disk of the SCSI kind tells what it takes itself; of others the kernel knows how much it hands over.
std::optional<unsigned> requestsAtOnce(std::uint64_t disk) {
  const std::string folder = sysFolder(disk);
  const auto ofDisk = numberOf(folder, "device/queue_depth");
  return ofDisk ? ofDisk : numberOf(folder, "queue/nr_requests");
}

bool isRemovableDisk(std::uint64_t disk) {
  return isRemovable(sysFolder(disk));
}

}  // namespace spacemint
