#include "core/wording/AccountText.h"

#include "core/base/ByteFormat.h"
#include "core/base/RelativeTime.h"
#include "core/tree/Paths.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace spacemint {

namespace {

using Lines = std::vector<AccountLine>;

// What the words of a line need.
struct Scene {
  const Account& account;
  const std::string& home;
  const std::string& locale;
  Date now;

  std::string counted(std::int64_t number, std::string_view thing) const {
    return spacemint::counted(number, thing, locale);
  }
};

constexpr std::array<std::string_view, 12> partKeys{
    "files",  "folders",   "deletedButOpen", "fileSystem",  "smallFiles", "saved",
    "unread", "snapshots", "otherVolumes",   "unexplained", "heldBack",   "free"};

constexpr std::array<std::string_view, 9> causeKeys{
    "unread",          "snapshots",         "unmountedSubvolumes", "programsOfOthers",
    "mappedFiles",     "unknownFileSystem", "hiddenUnderMounts",   "sharedBlocks",
    "changesSinceScan"};

// "a, b and c"
std::string listed(const std::vector<std::string>& words) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i) {
    text += (i == 0 ? "" : i + 1 == words.size() ? " and " : ", ") + words[i];
  }
  return text;
}

// At most two names: "postgres", "sh and tail", "sh and 4 others".
std::string programNames(const std::vector<std::string>& names) {
  if (names.size() <= 2) return listed(names);
  return names.front() + " and " + std::to_string(names.size() - 1) + " others";
}

std::vector<AccountLine::Detail> pathDetails(const std::vector<std::string>& paths, const Scene& scene) {
  std::vector<AccountLine::Detail> details;
  for (const std::string& path : paths) details.push_back({.title = Paths::display(path, scene.home)});
  return details;
}

std::vector<AccountLine::Detail> snapshotDetails(const Scene& scene) {
  std::vector<AccountLine::Detail> details;
  for (const LeftOut& snapshot : scene.account.scanned.snapshots) {
    details.push_back(
        {.title = Paths::display(snapshot.path, scene.home),
         .note = snapshot.created ? RelativeTime::string(*snapshot.created, scene.now, scene.locale) : ""});
  }
  return details;
}

// "5, the oldest made 3 weeks ago"
std::string snapshotNote(const Scene& scene) {
  const auto& snapshots = scene.account.scanned.snapshots;
  std::optional<Date> oldest;
  for (const LeftOut& snapshot : snapshots) {
    if (snapshot.created && (!oldest || *snapshot.created < *oldest)) oldest = snapshot.created;
  }
  const std::string count = groupedNumber(std::ssize(snapshots), scene.locale);
  if (!oldest) return count;
  return count + (snapshots.size() == 1 ? ", made " : ", the oldest made ") +
         RelativeTime::string(*oldest, scene.now, scene.locale);
}

std::vector<AccountLine::Detail> heldDetails(const Scene& scene) {
  std::vector<AccountLine::Detail> details;
  for (const HeldFiles& held : scene.account.held) {
    details.push_back({.title = programNames(held.programs),
                       .note = "in " + scene.counted(held.count, "file"),
                       .size = held.size > 0 ? std::optional{held.size} : std::nullopt});
  }
  return details;
}

std::string causeText(RestCause cause, const Scene& scene) {
  switch (cause) {
    case RestCause::unreadItems:
      return "unread folders";
    case RestCause::snapshots:
      return "snapshots";
    case RestCause::unmountedSubvolumes:
      return "snapshots or subvolumes that are not mounted";
    case RestCause::othersPrograms:
      return "deleted files of " + scene.counted(scene.account.refusedPrograms, "program") +
             " of other users";
    case RestCause::mappedFiles:
      return "deleted libraries in use";
    case RestCause::unknownFileSystem:
      return "the file system's own data";
    case RestCause::hiddenUnderMounts:
      return "files hidden under other volumes";
    case RestCause::sharedBlocks:
      return "files that share blocks or are compressed";
    case RestCause::changesSinceScan:
      return "changes since the scan";
  }
  return "";
}

std::string restNote(const Scene& scene) {
  const Account& account = scene.account;
  if (!account.scanned.isWhole)
    return account.rest < 0 ? std::string{AccountText::scanAgain} : "Not in this scan";
  std::vector<std::string> causes;
  for (const RestCause cause : account.causes()) causes.push_back(causeText(cause, scene));
  if (causes.empty()) return "Too little to have a cause";
  return (account.rest < 0 ? "Less is used than was found, because of " : "Perhaps ") + listed(causes);
}

AccountLine heldBackLine(const Account& account) {
  const bool isBtrfs = account.volume.fileSystem == "btrfs";
  return {
      .part = AccountPart::heldBack,
      .title = isBtrfs ? "Set aside for bookkeeping" : "Reserved for the system",
      .note = isBtrfs ? "The file system fills it with its own data" : "Only the administrator can fill it",
      .size = account.space.heldBack,
      .symbol = "lock"};
}

void addUnlessZero(Lines& lines, AccountLine line) {
  if (line.size != 0) lines.push_back(std::move(line));
}

void addUnlessEmpty(Lines& lines, std::int64_t count, AccountLine line) {
  if (count > 0) lines.push_back(std::move(line));
}

void addMeasured(Lines& lines, const Scene& scene) {
  const Account& account = scene.account;
  lines.push_back(
      {.part = AccountPart::files, .title = "In files", .size = account.scanned.files, .symbol = "doc"});
  addUnlessZero(lines, {.part = AccountPart::folders,
                        .title = "The folders themselves",
                        .note = "Their lists of names",
                        .size = account.scanned.folders,
                        .symbol = "folder"});
  addUnlessEmpty(lines, std::ssize(account.held),
                 {.part = AccountPart::deleted,
                  .title = "Deleted, but still open",
                  .note = "Comes back when these programs end or restart",
                  .size = account.deleted > 0 ? std::optional{account.deleted} : std::nullopt,
                  .symbol = "trash.slash",
                  .details = heldDetails(scene)});
  addUnlessZero(lines, {.part = AccountPart::ownBytes,
                        .title = "The file system's own data",
                        .note = "Its records of files and free space",
                        .size = account.ownBytes.value_or(0),
                        .symbol = "cylinder"});
  addUnlessZero(lines, {.part = AccountPart::inlined,
                        .title = "Small files inside that data",
                        .note = "Counted above as whole blocks, but stored in the file system's records",
                        .size = saturatingSubtract(0, account.scanned.inlined),
                        .symbol = "doc"});
  addUnlessZero(lines, {.part = AccountPart::saved,
                        .title = "Saved by sharing and compression",
                        .note = "Counted above, but stored only once or smaller",
                        .size = saturatingSubtract(0, account.saved),
                        .symbol = "square.stack.3d.up"});
}

void addCounted(Lines& lines, const Scene& scene) {
  const ScannedVolume& scanned = scene.account.scanned;
  const std::string where = scanned.isWhole ? "“Unexplained”" : "“Elsewhere”";
  addUnlessEmpty(lines, std::ssize(scanned.snapshots),
                 {.part = AccountPart::snapshots,
                  .title = "Snapshots",
                  .note = snapshotNote(scene) + ". What only they hold is in " + where,
                  .symbol = "externaldrive.badge.timemachine",
                  .details = snapshotDetails(scene)});
  addUnlessEmpty(lines, scanned.unread,
                 {.part = AccountPart::unread,
                  .title = "Folders that cannot be read",
                  .note = scene.counted(scanned.unread, "item") + "; the size is in " + where +
                          ". An administrator can read them",
                  .symbol = "folder.badge.gearshape",
                  .details = pathDetails(scanned.unreadPaths, scene)});
  addUnlessEmpty(
      lines, std::ssize(scanned.otherVolumes),
      {.part = AccountPart::otherVolumes,
       .title = "Other volumes inside",
       .note = scene.counted(std::ssize(scanned.otherVolumes), "volume") + ", each with its own space",
       .symbol = "externaldrive",
       .details = pathDetails(scanned.otherVolumes, scene)});
}

}  // namespace

std::vector<AccountLine> AccountText::lines(const Account& account, const std::string& home,
                                            const std::string& locale, Date now) {
  const Scene scene{account, home, locale, now};
  Lines lines;
  addMeasured(lines, scene);
  addCounted(lines, scene);
  lines.push_back({.part = AccountPart::rest,
                   .title = account.scanned.isWhole ? "Unexplained" : "Elsewhere on this volume",
                   .note = restNote(scene),
                   .size = account.rest,
                   .symbol = "unexplained"});
  addUnlessZero(lines, heldBackLine(account));
  lines.push_back(
      {.part = AccountPart::free, .title = "Free", .size = account.space.free, .symbol = "checkmark"});
  return lines;
}

std::string AccountText::sum(const Account& account, const std::string& locale) {
  const auto bytes = [&](Bytes count) { return ByteFormat::string(count, locale); };
  const Bytes known = account.knownNotInFiles();
  if (known < 0 || (!account.scanned.isWhole && account.rest < 0)) return std::string{scanAgain} + ".";
  std::string text = bytes(account.space.total) + " = " + bytes(account.scanned.files) + " in files + " +
                     bytes(known) + " not in files + ";
  if (!account.scanned.isWhole) text += bytes(account.rest) + " elsewhere, not scanned + ";
  return text + bytes(account.space.free) + " free.";
}

std::string_view AccountText::keyOf(AccountPart part) {
  return partKeys.at(std::to_underlying(part));
}

std::string_view AccountText::keyOf(RestCause cause) {
  return causeKeys.at(std::to_underlying(cause));
}

}  // namespace spacemint
