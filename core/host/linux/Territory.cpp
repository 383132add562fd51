#include "core/host/linux/Territory.h"

#include "core/base/AsciiText.h"
#include "core/host/linux/Subvolume.h"
#include "core/host/linux/VolumesOfMounts.h"

#include <algorithm>
#include <filesystem>

namespace spacemint {

namespace {

bool isBelow(std::string_view path, std::string_view folder) {
  return path != folder && isAtOrBelow(path, folder);
}

// The part of `path` below `folder`, without a leading "/".
std::string_view relativeTo(std::string_view folder, std::string_view path) {
  path.remove_prefix(std::min(folder.size(), path.size()));
  if (path.starts_with('/')) path.remove_prefix(1);
  return path;
}

std::string joined(const std::string& folder, std::string_view rest) {
  std::string path = folder;
  if (!rest.empty() && !path.ends_with('/')) path += '/';
  return path += rest;
}

// Where the kernel and the services of a session mount what is on no disk.
bool isOfTheSystem(std::string_view path) {
  if (isAtOrBelow(path, "/run/media")) return false;
  constexpr std::string_view folders[] = {"/dev", "/proc", "/run", "/sys"};
  return std::ranges::any_of(folders, [&](std::string_view folder) { return isAtOrBelow(path, folder); });
}

// Why a mount below the root is not entered; absent if it is.
std::optional<LeftOut::Kind> reasonToLeaveOut(const Volume& volume, const VolumePlace& place,
                                              std::uint64_t pool, bool ofAllVolumes) {
  if (place.isSnapshot) return LeftOut::Kind::snapshot;
  if (volume.pool == pool) return std::nullopt;
  if (isRemote(volume.fileSystem)) return LeftOut::Kind::remote;
  if (volume.isRemovable) return LeftOut::Kind::removable;
  return ofAllVolumes ? std::nullopt : std::optional{LeftOut::Kind::volume};
}

struct Candidate {
  const Volume* volume;
  const VolumePlace* place;
};

}  // namespace

const MountTree* MountTree::child(std::string_view name) const {
  const auto found = below.find(name);
  return found != below.end() ? found->second.get() : nullptr;
}

MountTree& MountTree::at(std::string_view path) {
  MountTree* node = this;
  for (const std::string_view name : pieces(path, '/')) {
    auto& next = node->below[std::string{name}];
    if (!next) next = std::make_unique<MountTree>();
    node = next.get();
  }
  return *node;
}

Territory Territory::of(const FileHandle& root, const HandleFacts& facts) {
  const std::string path = realPathOf(root);
  // Without a path the mounts below the root are unknown; their mount ids keep them out.
  if (path.empty()) return of("/", facts, {}, {});
  const auto mounts = currentMounts();
  const bool anyBelow =
      std::ranges::any_of(mounts, [&](const Mount& mount) { return isBelow(mount.mountPoint, path); });
  return of(path, facts, mounts, anyBelow ? localVolumes() : std::vector<Volume>{});
}

Territory Territory::of(const std::string& path, const HandleFacts& facts, const std::vector<Mount>& mounts,
                        const std::vector<Volume>& volumes) {
  Territory territory;
  territory.path_ = path;
  const auto own = std::ranges::find(mounts, facts.mounted.mountId, &Mount::id);
  const bool isKnown = own != mounts.end();
  const std::uint64_t pool = isKnown ? own->device : facts.mounted.device;
  territory.places_.push_back({.mountPoint = isKnown ? own->mountPoint : path,
                               .root = isKnown ? own->root : "/",
                               .fileSystem = isKnown ? own->fileSystem : "",
                               .pool = pool});
  territory.lines_.push_back({facts.mounted.mountId, facts.identity()});

  std::vector<Candidate> candidates;
  for (const Volume& volume : volumes) {
    for (const VolumePlace& place : volume.places) {
      if (!isBelow(place.mountPoint, path)) continue;
      if (const auto kind = reasonToLeaveOut(volume, place, pool, path == wholeDisk)) {
        territory.leftOut_.push_back({place.mountPoint, *kind});
      } else if (place.top) {
        candidates.push_back({&volume, &place});
      }
    }
  }
  // The folders of a file system come before those inside them, so that a bind mount finds its original.
  std::ranges::stable_sort(candidates, {}, [](const Candidate& c) { return c.place->root.size(); });
  for (const auto& [volume, place] : candidates) {
    if (!territory.isCounted(*volume, *place)) territory.enter(*volume, *place);
  }
  territory.leaveOutUnreachable(mounts);
  for (const Mount& mount : mounts) {
    if (!isBelow(mount.mountPoint, path)) continue;
    MountTree& node = territory.mounts_.at(relativeTo(path, mount.mountPoint));
    node.isMountPoint = true;
    // A later line covers an earlier one.
    node.isEntered = territory.indexOf(mount.id).has_value();
    const bool isVolume = std::ranges::find(volumes, mount.device, &Volume::pool) != volumes.end();
    if (!isVolume && isRemote(mount.fileSystem) && !isOfTheSystem(mount.mountPoint)) {
      territory.leftOut_.push_back({mount.mountPoint, LeftOut::Kind::remote});
    }
  }
  std::ranges::sort(territory.leftOut_);
  return territory;
}

// A walk cannot reach a mount below one that is not entered. The first place is the root.
void Territory::leaveOutUnreachable(const std::vector<Mount>& mounts) {
  for (std::size_t i = 1; i < places_.size();) {
    const Mount* above =
        holderOf(std::filesystem::path{places_[i].mountPoint}.parent_path().string(), mounts);
    if (above == nullptr || indexOf(above->id)) {
      ++i;
      continue;
    }
    leftOut_.push_back({places_[i].mountPoint, LeftOut::Kind::volume});
    tops_.erase(lines_[i].top);
    places_.erase(places_.begin() + static_cast<std::ptrdiff_t>(i));
    lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(i));
    i = 1;  // others may have been below it
  }
}

void Territory::enter(const Volume& volume, const VolumePlace& place) {
  places_.push_back({place.mountPoint, place.root, volume.fileSystem, volume.pool});
  lines_.push_back({place.mountId, *place.top});
  tops_.insert(*place.top);
}

// Whether the folder that is mounted here is also reached through a mount that is entered already.
bool Territory::isCounted(const Volume& volume, const VolumePlace& place) const {
  for (std::size_t i = 0; i < places_.size(); ++i) {
    const ListedPlace& other = places_[i];
    if (other.pool != volume.pool || !isAtOrBelow(place.root, other.root)) continue;
    // The whole file system below the root's own folder: what is mounted from it keeps its usual path.
    if (i != 0 && isBelow(places_[0].root, other.root) && places_[0].pool == other.pool) continue;
    const std::string original = joined(other.mountPoint, relativeTo(other.root, place.root));
    const bool isOtherSubvolume =
        place.top->inode == Subvolume::topInode && place.top->device != lines_[i].top.device;
    // A folder that is mounted on itself hides the original.
    const bool isReached = original != place.mountPoint && isAtOrBelow(original, path_);
    if (isReached && !isOtherSubvolume) return true;
  }
  return false;
}

std::optional<std::size_t> Territory::indexOf(std::uint64_t mountId) const {
  const auto found = std::ranges::find(lines_, mountId, &Line::mountId);
  if (found == lines_.end()) return std::nullopt;
  return static_cast<std::size_t>(found - lines_.begin());
}

Territory::Verdict Territory::verdict(const FileHandle& folder, const HandleFacts& facts,
                                      bool isMountPoint) const {
  const auto index = indexOf(facts.mounted.mountId);
  if (!index) return Verdict::outside;
  if (isMountPoint) return Verdict::inside;
  const FileIdentity identity = facts.identity();
  if (identity == lines_[0].top || (!tops_.empty() && tops_.contains(identity))) return Verdict::outside;
  if (facts.inode == Subvolume::topInode) {
    const auto subvolume = subvolumeOf(folder);
    if (subvolume) return subvolume->isCopy ? Verdict::snapshot : Verdict::inside;
  }
  const bool isOneDevice = places_[*index].fileSystem != "btrfs";
  return isOneDevice && facts.mounted.device != lines_[*index].top.device ? Verdict::outside
                                                                          : Verdict::inside;
}

}  // namespace spacemint
