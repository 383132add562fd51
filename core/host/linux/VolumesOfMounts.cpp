#include "core/host/linux/VolumesOfMounts.h"

#include "core/base/AsciiText.h"
#include "core/base/Translation.h"

#include <algorithm>
#include <iterator>

namespace spacemint {

namespace {

// Decides about one line at a time; remembers what the later lines depend on.
class Selection {
 public:
  Selection(const std::vector<Mount>& mounts, const MountSurroundings& surroundings)
      : mounts_(mounts),
        surroundings_(surroundings),
        home_(holderOf(surroundings.home, mounts)),
        root_(holderOf("/", mounts)) {}

  // The place of a line that belongs to a volume.
  std::optional<VolumePlace> placeOf(const Mount& mount) const {
    const bool isNeeded = &mount == home_ || &mount == root_;
    if (!isNeeded && !isLocal(mount)) return std::nullopt;
    VolumePlace place{.mountId = mount.id, .mountPoint = mount.mountPoint, .root = mount.root};
    if (mayHangAt(mount)) return isNeeded ? std::optional{place} : std::nullopt;
    const auto top = surroundings_.topOf(mount);
    if (!top || top->mountId != mount.id || !top->isFolder) return std::nullopt;
    place.top = top->identity;
    return place;
  }

  bool holdsHome(const Mount& mount) const { return &mount == home_; }

 private:
  bool isLocal(const Mount& mount) const { return surroundings_.localTypes.contains(mount.fileSystem); }

  // A path lookup passes through every mount above the mount point.
  bool mayHangAt(const Mount& mount) const {
    return std::ranges::any_of(mounts_, [&](const Mount& above) {
      return isRemote(above.fileSystem) && isAtOrBelow(mount.mountPoint, above.mountPoint);
    });
  }

  const std::vector<Mount>& mounts_;
  const MountSurroundings& surroundings_;
  const Mount* home_;
  const Mount* root_;
};

Volume newVolume(const Mount& mount) {
  return {.pool = mount.device,
          .fileSystem = mount.fileSystem,
          .source = mount.source,
          .mayHang = isRemote(mount.fileSystem) || mount.fileSystem == "fuseblk"};
}

std::string nameOf(const Volume& volume) {
  const auto isRoot = [](const VolumePlace& place) { return place.mountPoint == "/"; };
  if (std::ranges::any_of(volume.places, isRoot)) return i18n("System");
  return volume.holdsHome ? i18n("Home") : "";
}

}  // namespace

std::vector<Volume> volumesOf(const std::vector<Mount>& mounts, const MountSurroundings& surroundings) {
  const Selection selection{mounts, surroundings};
  std::vector<Volume> volumes;
  for (const Mount& mount : mounts) {
    auto place = selection.placeOf(mount);
    if (!place) continue;
    auto volume = std::ranges::find(volumes, mount.device, &Volume::pool);
    if (volume == volumes.end()) volume = volumes.insert(volumes.end(), newVolume(mount));
    volume->places.push_back(std::move(*place));
    volume->isWritable |= mount.isWritable;
    volume->holdsHome |= selection.holdsHome(mount);
  }
  for (Volume& volume : volumes) volume.name = nameOf(volume);
  std::ranges::stable_partition(volumes, &Volume::holdsHome);
  return volumes;
}

std::set<std::string, std::less<>> localTypes(std::string_view fileSystems) {
  // ZFS and UBIFS manage their disks themselves.
  std::set<std::string, std::less<>> types{"zfs", "ubifs"};
  for (const std::string_view line : lines(fileSystems)) {
    if (!line.starts_with("nodev")) types.emplace(trimmed(line));
  }
  for (const char* image : {"squashfs", "erofs", "iso9660", "udf", "cramfs", "romfs"}) types.erase(image);
  return types;
}

// "fuseblk" is not among them: it is used for local disks, such as those with NTFS.
bool isRemote(std::string_view fileSystem) {
  constexpr std::string_view remote[] = {"9p",   "afs",  "autofs", "ceph",  "cifs",  "coda",
                                         "fuse", "gfs2", "nfs",    "ncpfs", "ocfs2", "smb3"};
  return fileSystem.starts_with("fuse.") || fileSystem == "nfs4" ||
         std::ranges::find(remote, fileSystem) != std::end(remote);
}

const Mount* holderOf(std::string_view path, const std::vector<Mount>& mounts) {
  const Mount* holder = nullptr;
  for (const Mount& mount : mounts) {
    // If two file systems are mounted on the same folder, the later one is visible.
    if (isAtOrBelow(path, mount.mountPoint) &&
        (holder == nullptr || mount.mountPoint.size() >= holder->mountPoint.size())) {
      holder = &mount;
    }
  }
  return holder;
}

}  // namespace spacemint
