#include "core/wording/AccountText.h"

#include "core/base/ByteFormat.h"
#include "core/base/RelativeTime.h"
#include "core/base/TextList.h"
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
};

constexpr std::array<std::string_view, 12> partKeys{
    "files",  "folders",   "deletedButOpen", "fileSystem",  "smallFiles", "saved",
    "unread", "snapshots", "otherVolumes",   "unexplained", "heldBack",   "free"};

constexpr std::array<std::string_view, 9> causeKeys{
    "unread",          "snapshots",         "unmountedSubvolumes", "programsOfOthers",
    "mappedFiles",     "unknownFileSystem", "hiddenUnderMounts",   "sharedBlocks",
    "changesSinceScan"};

// At most two names: "postgres", "sh and tail", "sh and 4 others".
std::string programNames(const std::vector<std::string>& names) {
  if (names.size() <= 2) return listed(names);
  const std::int64_t others = std::ssize(names) - 1;
  return i18np("{program} and {count} other", "{program} and {count} others", others,
               {{"program", names.front()}, {"count", numberText(others)}});
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
  return i18n(
      snapshots.size() == 1 ? i18nMark("{count}, made {age}") : i18nMark("{count}, the oldest made {age}"),
      {{"count", count}, {"age", RelativeTime::string(*oldest, scene.now, scene.locale)}});
}

std::vector<AccountLine::Detail> heldDetails(const Scene& scene) {
  std::vector<AccountLine::Detail> details;
  for (const HeldFiles& held : scene.account.held) {
    details.push_back({.title = programNames(held.programs),
                       .note = counted(held.count, "in {count} file", "in {count} files", scene.locale),
                       .size = held.size > 0 ? std::optional{held.size} : std::nullopt});
  }
  return details;
}

std::string causeText(RestCause cause, const Scene& scene) {
  switch (cause) {
    case RestCause::unreadItems:
      return i18n("unread folders");
    case RestCause::snapshots:
      return i18n("snapshots");
    case RestCause::unmountedSubvolumes:
      return i18n("snapshots or subvolumes that are not mounted");
    case RestCause::othersPrograms:
      return counted(scene.account.refusedPrograms, "deleted files of {count} program of other users",
                     "deleted files of {count} programs of other users", scene.locale);
    case RestCause::mappedFiles:
      return i18n("deleted libraries in use");
    case RestCause::unknownFileSystem:
      return i18n("the file system's own data");
    case RestCause::hiddenUnderMounts:
      return i18n("files hidden under other volumes");
    case RestCause::sharedBlocks:
      return i18n("files that share blocks or are compressed");
    case RestCause::changesSinceScan:
      return i18n("changes since the scan");
  }
  return "";
}

std::string restNote(const Scene& scene) {
  const Account& account = scene.account;
  if (!account.scanned.isWhole)
    return i18n(account.rest < 0 ? AccountText::scanAgain : i18nMark("Not in this scan"));
  std::vector<std::string> causes;
  for (const RestCause cause : account.causes()) causes.push_back(causeText(cause, scene));
  if (causes.empty()) return i18n("Too little to have a cause");
  return i18n(account.rest < 0 ? i18nMark("Less is used than was found, because of {causes}")
                               : i18nMark("Perhaps {causes}"),
              {{"causes", listed(causes)}});
}

AccountLine heldBackLine(const Account& account) {
  const bool isBtrfs = account.volume.fileSystem == "btrfs";
  return {
      .part = AccountPart::heldBack,
      .title = i18n(isBtrfs ? i18nMark("Set aside for bookkeeping") : i18nMark("Reserved for the system")),
      .note = i18n(isBtrfs ? i18nMark("The file system fills it with its own data")
                           : i18nMark("Only the administrator can fill it")),
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
  lines.push_back({.part = AccountPart::files,
                   .title = i18n("In files"),
                   .size = account.scanned.files,
                   .symbol = "doc"});
  addUnlessZero(lines, {.part = AccountPart::folders,
                        .title = i18n("The folders themselves"),
                        .note = i18n("Their lists of names"),
                        .size = account.scanned.folders,
                        .symbol = "folder"});
  addUnlessEmpty(lines, std::ssize(account.held),
                 {.part = AccountPart::deleted,
                  .title = i18n("Deleted, but still open"),
                  .note = i18n("Comes back when these programs end or restart"),
                  .size = account.deleted > 0 ? std::optional{account.deleted} : std::nullopt,
                  .symbol = "trash.slash",
                  .details = heldDetails(scene)});
  addUnlessZero(lines, {.part = AccountPart::ownBytes,
                        .title = i18n("The file system's own data"),
                        .note = i18n("Its records of files and free space"),
                        .size = account.ownBytes.value_or(0),
                        .symbol = "cylinder"});
  addUnlessZero(lines,
                {.part = AccountPart::inlined,
                 .title = i18n("Small files inside that data"),
                 .note = i18n("Counted above as whole blocks, but stored in the file system's records"),
                 .size = saturatingSubtract(0, account.scanned.inlined),
                 .symbol = "doc"});
  addUnlessZero(lines, {.part = AccountPart::saved,
                        .title = i18n("Saved by sharing and compression"),
                        .note = i18n("Counted above, but stored only once or smaller"),
                        .size = saturatingSubtract(0, account.saved),
                        .symbol = "square.stack.3d.up"});
}

std::string unreadNote(const ScannedVolume& scanned, const std::string& locale) {
  if (scanned.isWhole) {
    return counted(scanned.unread,
                   "{count} item; the size is in “Unexplained”. An administrator can read them",
                   "{count} items; the size is in “Unexplained”. An administrator can read them", locale);
  }
  return counted(scanned.unread, "{count} item; the size is in “Elsewhere”. An administrator can read them",
                 "{count} items; the size is in “Elsewhere”. An administrator can read them", locale);
}

void addCounted(Lines& lines, const Scene& scene) {
  const ScannedVolume& scanned = scene.account.scanned;
  addUnlessEmpty(
      lines, std::ssize(scanned.snapshots),
      {.part = AccountPart::snapshots,
       .title = i18n("Snapshots"),
       .note = i18n(scanned.isWhole ? i18nMark("{snapshots}. What only they hold is in “Unexplained”")
                                    : i18nMark("{snapshots}. What only they hold is in “Elsewhere”"),
                    {{"snapshots", snapshotNote(scene)}}),
       .symbol = "externaldrive.badge.timemachine",
       .details = snapshotDetails(scene)});
  addUnlessEmpty(lines, scanned.unread,
                 {.part = AccountPart::unread,
                  .title = i18n("Folders that cannot be read"),
                  .note = unreadNote(scanned, scene.locale),
                  .symbol = "folder.badge.gearshape",
                  .details = pathDetails(scanned.unreadPaths, scene)});
  addUnlessEmpty(lines, std::ssize(scanned.otherVolumes),
                 {.part = AccountPart::otherVolumes,
                  .title = i18n("Other volumes inside"),
                  .note = counted(std::ssize(scanned.otherVolumes), "{count} volume, each with its own space",
                                  "{count} volumes, each with its own space", scene.locale),
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
                   .title = i18n(account.scanned.isWhole ? i18nMark("Unexplained")
                                                         : i18nMark("Elsewhere on this volume")),
                   .note = restNote(scene),
                   .size = account.rest,
                   .symbol = "unexplained"});
  addUnlessZero(lines, heldBackLine(account));
  lines.push_back(
      {.part = AccountPart::free, .title = i18n("Free"), .size = account.space.free, .symbol = "checkmark"});
  return lines;
}

std::string AccountText::sum(const Account& account, const std::string& locale) {
  const auto bytes = [&](Bytes count) { return ByteFormat::string(count, locale); };
  const Bytes known = account.knownNotInFiles();
  if (known < 0 || (!account.scanned.isWhole && account.rest < 0))
    return i18n("Scan again to see what adds up.");
  const std::string total = bytes(account.space.total);
  const std::string files = bytes(account.scanned.files);
  const std::string others = bytes(known);
  const std::string elsewhere = bytes(account.rest);
  const std::string free = bytes(account.space.free);
  return i18n(
      account.scanned.isWhole
          ? i18nMark("{total} = {files} in files + {others} not in files + {free} free.")
          : i18nMark("{total} = {files} in files + {others} not in files + {elsewhere} elsewhere, not "
                     "scanned + {free} free."),
      {{"total", total}, {"files", files}, {"others", others}, {"elsewhere", elsewhere}, {"free", free}});
}

std::string_view AccountText::keyOf(AccountPart part) {
  return partKeys.at(std::to_underlying(part));
}

std::string_view AccountText::keyOf(RestCause cause) {
  return causeKeys.at(std::to_underlying(cause));
}

}  // namespace spacemint
