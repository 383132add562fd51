#include "core/volume/Account.h"

#include "core/host/FileSystemOwn.h"
#include "core/host/VolumeInfo.h"

#include <algorithm>
#include <functional>
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

const Volume* volumeAt(const std::vector<Volume>& volumes, const std::string& mountPoint) {
  const auto found = std::ranges::find_if(volumes, [&](const Volume& volume) {
    return std::ranges::find(volume.places, mountPoint, &VolumePlace::mountPoint) != volume.places.end();
  });
  return found != volumes.end() ? &*found : nullptr;
}

bool holds(const Volume& volume, const std::string& path) {
  return volume.mountPoint() == "/" || path.starts_with(volume.mountPoint());
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
      {RestCause::othersPrograms, isMissing && refusedPrograms > 0},
      {RestCause::mappedFiles, isMissing && hasUnsized},
      {RestCause::unknownFileSystem, isMissing && !ownBytes},
      {RestCause::unknownFolders, isMissing && !scanned.folders},
      {RestCause::hiddenUnderMounts, isMissing && !scanned.otherVolumes.empty()},
      {RestCause::sharedBlocks, !isMissing && sharesBlocks(volume)},
      {RestCause::smallFilesInMetadata, !isMissing && volume.fileSystem == "btrfs"},
      {RestCause::changesSinceScan, true}};
  std::vector<RestCause> causes;
  for (const auto& [cause, applies] : possible) {
    if (applies) causes.push_back(cause);
  }
  return causes;
}

std::optional<ScannedVolume> scannedVolume(const Snapshot& scan, const Volume& volume) {
  if (!holds(volume, scan.rootPath())) return std::nullopt;
  return ScannedVolume{.root = scan.rootPath(),
                       .date = scan.date,
                       .files = scan.root.size,
                       .isWhole = scan.rootPath() == volume.mountPoint()};
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
  account.rest = saturatingAdd(account.space.used, account.saved);
  for (const Bytes part : {account.scanned.files, account.scanned.folders.value_or(0), account.deleted,
                           account.ownBytes.value_or(0)}) {
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
