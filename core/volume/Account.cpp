#include "core/volume/Account.h"

#include "core/base/AsciiText.h"
#include "core/host/FileSystemOwn.h"
#include "core/host/VolumeInfo.h"
#include "core/volume/SharedFiles.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <utility>

namespace spacemint {

namespace {

constexpr Bytes cardMinimum = 500'000'000;
constexpr double cardShare = 0.05;
constexpr Bytes restMinimum = 4'000'000;
constexpr double restShare = 0.01;

bool isShare(Bytes part, double share, Bytes whole) {
  return static_cast<double>(part) >= share * static_cast<double>(whole);
}

Bytes magnitude(Bytes bytes) {
  return bytes < 0 ? saturatingSubtract(0, bytes) : bytes;
}

template <class Value>
void addOnce(std::vector<Value>& values, const Value& value) {
  if (std::ranges::find(values, value) == values.end()) values.push_back(value);
}

// One entry for each set of programs: a log that a service and its helpers hold counts once.
std::vector<HeldFiles> heldByPrograms(const std::vector<DeletedFile>& files, std::uint64_t pool) {
  std::map<std::set<std::string>, HeldFiles> groups;
  for (const DeletedFile& file : files) {
    if (file.pool != pool) continue;
    std::set<std::string> names;
    for (const RunningProgram& program : file.programs) names.insert(program.name);
    HeldFiles& group = groups[names];
    for (const RunningProgram& program : file.programs) addOnce(group.pids, program.pid);
    group.programs.assign(names.begin(), names.end());
    ++group.count;
    group.size = saturatingAdd(group.size, file.size.value_or(0));
  }
  std::vector<HeldFiles> held;
  held.reserve(groups.size());
  for (auto& [names, group] : groups) held.push_back(std::move(group));
  std::ranges::stable_sort(held, std::greater{}, &HeldFiles::size);
  return held;
}

Bytes sumOf(const std::vector<HeldFiles>& held) {
  Bytes sum = 0;
  for (const HeldFiles& files : held) sum = saturatingAdd(sum, files.size);
  return sum;
}

bool sharesBlocks(const Volume& volume) {
  return volume.fileSystem == "btrfs" || volume.fileSystem == "xfs";
}

// Whether subvolumes of Btrfs may lie beside the mounted ones. Tools keep snapshots there.
bool hasUnmountedSubvolumes(const Volume& volume) {
  return volume.fileSystem == "btrfs" &&
         std::ranges::find(volume.places, "/", &VolumePlace::root) == volume.places.end();
}

const Volume* volumeAt(const std::vector<Volume>& volumes, const std::string& mountPoint) {
  const auto found = std::ranges::find_if(volumes, [&](const Volume& volume) {
    return std::ranges::find(volume.places, mountPoint, &VolumePlace::mountPoint) != volume.places.end();
  });
  return found != volumes.end() ? &*found : nullptr;
}

// The place of the volume that a scan covers; null if there is none. Numbers of pools differ after a restart
// of the computer, so they are not compared.
const VolumePlace* placeOf(const CoveredPlace& covered, const Volume& volume) {
  const auto found = std::ranges::find_if(volume.places, [&](const VolumePlace& place) {
    return place.mountPoint == covered.place.mountPoint && place.root == covered.place.root;
  });
  return found != volume.places.end() && covered.place.fileSystem == volume.fileSystem ? &*found : nullptr;
}

bool isOn(const Volume& volume, const Snapshot& scan, std::string_view path) {
  const CoveredPlace* covered = scan.coverage.placeOf(path);
  return covered != nullptr && placeOf(*covered, volume) != nullptr;
}

// Whether each place of the volume was scanned from its top, itself or as a part of another place.
bool coversAll(const Snapshot& scan, const Volume& volume) {
  std::vector<const VolumePlace*> scanned;
  for (const CoveredPlace& covered : scan.coverage.places) {
    const VolumePlace* place = placeOf(covered, volume);
    if (place != nullptr && isAtOrBelow(place->mountPoint, scan.rootPath())) scanned.push_back(place);
  }
  return std::ranges::all_of(volume.places, [&](const VolumePlace& place) {
    return place.isSnapshot || std::ranges::any_of(scanned, [&](const VolumePlace* whole) {
             return isAtOrBelow(place.root, whole->root);
           });
  });
}

void addUnread(ScannedVolume& scanned, const Snapshot& scan, const Volume& volume) {
  const Unread& unread = scan.coverage.unread;
  std::ranges::copy_if(unread.paths, std::back_inserter(scanned.unreadPaths),
                       [&](const std::string& path) { return isOn(volume, scan, path); });
  const auto named = std::ssize(unread.paths);
  // Of those without a path nobody knows the volume.
  const auto unnamed = std::max<std::int64_t>(0, saturatingAdd(unread.folders, unread.entries) - named);
  scanned.unread = saturatingAdd(std::ssize(scanned.unreadPaths), unnamed);
}

void addLeftOut(ScannedVolume& scanned, const Snapshot& scan, const Volume& volume) {
  for (const LeftOut& item : scan.coverage.leftOut) {
    if (!isOn(volume, scan, item.path)) continue;
    if (item.kind == LeftOut::Kind::snapshot) {
      scanned.snapshots.push_back(item);
    } else if (item.kind != LeftOut::Kind::excluded) {
      scanned.otherVolumes.push_back(item.path);
    }
  }
}

}  // namespace

Bytes Account::knownNotInFiles() const {
  return scanned.isWhole ? notInFiles() : saturatingSubtract(notInFiles(), rest);
}

bool Account::matters() const {
  const Bytes known = knownNotInFiles();
  return known >= cardMinimum || (known > 0 && isShare(known, cardShare, space.used));
}

std::vector<RestCause> Account::causes() const {
  const Bytes size = magnitude(rest);
  if (!scanned.isWhole || size <= restMinimum || !isShare(size, restShare, space.used)) return {};
  const bool isMissing = rest > 0;
  const bool hasUnsized = std::ranges::any_of(held, [](const HeldFiles& files) { return files.size == 0; });
  const std::pair<RestCause, bool> possible[] = {
      {RestCause::unreadItems, isMissing && scanned.unread > 0},
      {RestCause::snapshots, isMissing && !scanned.snapshots.empty()},
      {RestCause::unmountedSubvolumes, isMissing && hasUnmountedSubvolumes(volume)},
      {RestCause::othersPrograms, isMissing && refusedPrograms > 0},
      {RestCause::mappedFiles, isMissing && hasUnsized},
      {RestCause::unknownFileSystem, isMissing && !ownBytes},
      {RestCause::hiddenUnderMounts, isMissing && !scanned.otherVolumes.empty()},
      {RestCause::sharedBlocks, !isMissing && sharesBlocks(volume)},
      {RestCause::changesSinceScan, true}};
  std::vector<RestCause> causes;
  for (const auto& [cause, applies] : possible) {
    if (applies) causes.push_back(cause);
  }
  return causes;
}

std::optional<ScannedVolume> scannedVolume(const Snapshot& scan, const Volume& volume) {
  ScannedVolume scanned{.root = scan.rootPath(),
                        .date = scan.date,
                        .isWhole = scan.coverage.excludes.empty() && coversAll(scan, volume)};
  bool isCovered = false;
  for (const CoveredPlace& covered : scan.coverage.places) {
    if (placeOf(covered, volume) == nullptr) continue;
    isCovered = true;
    scanned.files = saturatingAdd(scanned.files, covered.size);
    scanned.folders = saturatingAdd(scanned.folders, covered.folderBytes);
    scanned.inlined = saturatingAdd(scanned.inlined, covered.inlineBytes);
  }
  if (!isCovered) return std::nullopt;
  addUnread(scanned, scan, volume);
  addLeftOut(scanned, scan, volume);
  return scanned;
}

Bytes savedBytes(const Snapshot& scan, const Volume& volume) {
  if (!sharesBlocks(volume)) return 0;
  return SharedFiles::saved(scan, [&](const std::string& path) { return isOn(volume, scan, path); });
}

Account accountOf(VolumeFacts facts, ScannedVolume scanned) {
  Account account{.volume = std::move(facts.volume),
                  .space = facts.space,
                  .scanned = std::move(scanned),
                  .refusedPrograms = facts.deleted.refused,
                  .ownBytes = facts.ownBytes,
                  .saved = facts.saved};
  account.held = heldByPrograms(facts.deleted.files, account.volume.pool);
  account.deleted = sumOf(account.held);
  account.rest = saturatingAdd(saturatingAdd(account.space.used, account.saved), account.scanned.inlined);
  for (const Bytes part :
       {account.scanned.files, account.scanned.folders, account.deleted, account.ownBytes.value_or(0)}) {
    account.rest = saturatingSubtract(account.rest, part);
  }
  return account;
}

std::optional<VolumeFacts> readVolumeFacts(const std::string& path) {
  const auto mountPoint = mountPointOf(path);
  if (!mountPoint) return std::nullopt;
  for (VolumeReading& reading : readVolumes()) {
    if (!reading.space || volumeAt({reading.volume}, *mountPoint) == nullptr) continue;
    return VolumeFacts{.volume = std::move(reading.volume),
                       .space = *reading.space,
                       .ownBytes = fileSystemOwnBytes(*mountPoint),
                       .deleted = deletedFilesInUse()};
  }
  return std::nullopt;
}

}  // namespace spacemint
