#include "core/wording/FindingText.h"

#include "core/base/ByteFormat.h"
#include "core/base/RelativeTime.h"
#include "core/base/Translation.h"
#include "core/host/FolderListing.h"
#include "core/tree/Paths.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace spacemint {

namespace {

// "less than a minute", "1 minute", "3 hours"
std::string lengthText(std::chrono::seconds length) {
  const auto minutes = std::chrono::floor<std::chrono::minutes>(length).count();
  if (minutes < 1) return i18n("less than a minute");
  const auto number = minutes < 120 ? minutes : minutes / 60;
  const std::string count = numberText(number);
  return minutes < 120 ? i18np("{count} minute", "{count} minutes", number, {{"count", count}})
                       : i18np("{count} hour", "{count} hours", number, {{"count", count}});
}

// A part of a change of the free space: what there is more of at a place, and what there is less of.
struct PartText {
  const char* more;
  const char* less;
};
constexpr PartText inFiles{i18nMark("{size} in files"), i18nMark("{size} less in files")};
constexpr PartText inHome{i18nMark("{size} in your home folder"),
                          i18nMark("{size} less in your home folder")};
constexpr PartText inFolder{i18nMark("{size} in {folder}"), i18nMark("{size} less in {folder}")};
constexpr PartText notInFiles{i18nMark("{size} not in files"), i18nMark("{size} less not in files")};
constexpr PartText elsewhereOnDisk{i18nMark("{size} elsewhere"), i18nMark("{size} less elsewhere")};

std::string partText(const PartText& text, Bytes bytes, const std::string& folder,
                     const std::string& locale) {
  const std::string size = ByteFormat::string(std::abs(bytes), locale);
  return i18n(bytes < 0 ? text.less : text.more, {{"size", size}, {"folder", folder}});
}

}  // namespace

std::string FindingText::freeChange(Bytes before, Bytes after, const std::string& locale) {
  const Bytes change = saturatingSubtract(after, before);
  const auto text = [&](Bytes bytes) { return ByteFormat::string(bytes, locale); };
  const std::string size = text(change < 0 ? saturatingSubtract(0, change) : change);
  const std::string from = text(before);
  const std::string to = text(after);
  if (change != 0 && from == to) {
    return i18n(change < 0 ? i18nMark("Free space dropped by {size}") : i18nMark("Free space grew by {size}"),
                {{"size", size}});
  }
  return i18n(change < 0 ? i18nMark("Free space dropped by {size}, from {from} to {to}")
                         : i18nMark("Free space grew by {size}, from {from} to {to}"),
              {{"size", size}, {"from", from}, {"to", to}});
}

std::string FindingText::freeChange(const SpaceChange& change, std::string_view home,
                                    const std::string& locale) {
  constexpr Bytes smallestPart = 100'000'000;
  const Bytes difference = saturatingSubtract(change.freeNow, change.freeBefore);
  const bool hasChanged = difference >= smallestPart || difference <= -smallestPart;
  const std::string text =
      hasChanged ? freeChange(change.freeBefore, change.freeNow, locale) : i18n("Free space is as it was");
  const Bytes elsewhere = change.elsewhere().value_or(0);
  if (std::abs(elsewhere) < smallestPart) return text;
  const bool isDisk = change.root == wholeDisk;
  const std::string other = partText(isDisk ? notInFiles : elsewhereOnDisk, elsewhere, "", locale);
  if (std::abs(*change.inFolder) < smallestPart)
    return i18n("{change}: {place}", {{"change", text}, {"place", other}});
  const PartText& place = isDisk ? inFiles : change.root == home ? inHome : inFolder;
  const std::string inside = partText(place, *change.inFolder, Paths::display(change.root, home), locale);
  return i18n("{change}: {place}, {other}", {{"change", text}, {"place", inside}, {"other", other}});
}

std::string FindingText::leftOutTitle(const LeftOut& item, Date now, const std::string& locale) {
  switch (item.kind) {
    case LeftOut::Kind::volume:
      return i18n("Another disk");
    case LeftOut::Kind::snapshot:
      return item.created
                 ? i18n("Snapshot from {age}", {{"age", RelativeTime::age(*item.created, now, locale)}})
                 : i18n("Snapshots");
    case LeftOut::Kind::removable:
      return i18n("Removable disk");
    case LeftOut::Kind::remote:
      return i18n("Network folder");
    case LeftOut::Kind::excluded:
      return i18n(excludedTitle);
  }
  return "";
}

std::string FindingText::excludedItems(const ExcludedSum& sum, const std::string& locale) {
  const std::string count = groupedNumber(sum.items, locale);
  if (sum.unknown == 0) {
    return i18np("1 file or folder, as last measured", "{count} files and folders, as last measured",
                 sum.items, {{"count", count}});
  }
  if (sum.unknown == sum.items) {
    return i18np("1 file or folder, never measured", "{count} files and folders, never measured", sum.items,
                 {{"count", count}});
  }
  return i18n("{count} files and folders, {unknown} of them never measured",
              {{"count", count}, {"unknown", groupedNumber(sum.unknown, locale)}});
}

std::string FindingText::stoppedScan(double measuredPart) {
  const int percent = static_cast<int>(measuredPart * 100);
  return percent == 0 ? i18n("Stopped before the end")
                      // xgettext:no-c-format
                      : i18n("Stopped: {percent} % measured", {{"percent", numberText(percent)}});
}

std::string FindingText::folderSize(Bytes size, bool isLowerBound, const std::string& locale) {
  const std::string text = ByteFormat::string(size, locale);
  return isLowerBound ? i18n("at least {size}", {{"size", text}}) : text;
}

std::string FindingText::nothingFound(Bytes minimum, const std::string& locale) {
  if (minimum <= 1) return i18n("Nothing found.");
  return i18n("Nothing found. The scan has files and folders from {size} on.",
              {{"size", ByteFormat::string(minimum, locale)}});
}

std::string FindingText::noLargeFiles(Bytes minimum, const std::string& locale) {
  if (minimum <= 1) return i18n("No files.");
  return i18n("No files over {size}.", {{"size", ByteFormat::string(minimum, locale)}});
}

std::string FindingText::nothingGrew(Bytes minimum, const std::string& locale) {
  return i18n("Nothing grew by more than {size}.", {{"size", ByteFormat::string(minimum, locale)}});
}

std::string FindingText::perDay(Bytes growth, std::chrono::microseconds between, const std::string& locale) {
  constexpr std::chrono::days shortest{2};
  if (between <= shortest) return "";
  const double days = std::chrono::duration<double, std::chrono::days::period>{between}.count();
  const Bytes size = std::llround(static_cast<double>(growth) / days);
  return i18n("{size} a day", {{"size", ByteFormat::string(size, locale)}});
}

std::string FindingText::lost(Bytes bytes, const std::string& locale) {
  return "\u2212" + ByteFormat::string(bytes, locale);
}

std::string FindingText::left(const Shrinkage& shrinkage, Bytes minNodeSize, const std::string& locale) {
  if (shrinkage.isGone) return i18n("gone");
  if (shrinkage.size > 0) return i18n("{size} left", {{"size", ByteFormat::string(shrinkage.size, locale)}});
  return i18n("under {size} left", {{"size", ByteFormat::string(std::max<Bytes>(minNodeSize, 1), locale)}});
}

std::string FindingText::pace(const GrowthLine& line, const std::string& locale) {
  const std::string length = lengthText(line.duration);
  if (!line.isGoingOn) return i18n("Stopped after {length}", {{"length", length}});
  const std::string size = ByteFormat::string(line.perSecond(), locale);
  if (line.duration < std::chrono::minutes{1}) return i18n("{size}/s", {{"size", size}});
  return i18n("{size}/s for {length}", {{"size", size}, {"length", length}});
}

std::string FindingText::inTheLastMinute(const GrowthLine& line, const std::string& locale) {
  return i18n("+{size} in 1 min", {{"size", ByteFormat::string(line.figures.minute, locale)}});
}

std::string FindingText::fullIn(std::chrono::seconds time) {
  const auto minutes = std::max<std::int64_t>(std::chrono::round<std::chrono::minutes>(time).count(), 1);
  if (minutes < 120) return i18n("full in {count} min at this pace", {{"count", numberText(minutes)}});
  const std::int64_t hours = minutes / 60;
  if (hours < 48) {
    return i18np("full in {count} hour at this pace", "full in {count} hours at this pace", hours,
                 {{"count", numberText(hours)}});
  }
  return i18np("full in {count} day at this pace", "full in {count} days at this pace", hours / 24,
               {{"count", numberText(hours / 24)}});
}

std::string FindingText::culprit(const GrowthLine& line, const std::string& path, const std::string& locale) {
  return i18n("{path} grew by {size} in the last 10 minutes.",
              {{"path", path}, {"size", ByteFormat::string(line.figures.tenMinutes, locale)}});
}

std::string FindingText::noCaches(Bytes minimum, const std::string& locale) {
  return i18n("No package or build caches over {size}.", {{"size", ByteFormat::string(minimum, locale)}});
}

std::string FindingText::dockerFailed(const std::string& reason) {
  return i18n("Couldn't read Docker's disk usage: {reason}", {{"reason", reason}});
}

std::string FindingText::ollamaFailed(const std::string& reason) {
  return i18n("Couldn't read Ollama's models: {reason}", {{"reason", reason}});
}

std::string FindingText::inUse(std::int64_t active, std::int64_t count) {
  return i18n("{active} of {count} in use", {{"active", numberText(active)}, {"count", numberText(count)}});
}

std::string FindingText::freesAtMost(Bytes bytes, const std::string& locale) {
  return i18n("frees at most {size}", {{"size", ByteFormat::string(bytes, locale)}});
}

std::string FindingText::warning(SpaceLevel level, std::int64_t thresholdGB) {
  switch (level) {
    case SpaceLevel::ok:
      return "";
    case SpaceLevel::critical:
      return i18n("Your disk is almost full. Free up space soon.");
    case SpaceLevel::low:
      return i18n("You're below your {number} GB warning level. Here's where the space went.",
                  {{"number", numberText(thresholdGB)}});
  }
  return "";
}

std::string FindingText::trashTitle(const Suggestions::TrashInfo& trash, const std::string& locale) {
  return i18n("{size} is sitting in the Trash", {{"size", ByteFormat::string(trash.size, locale)}});
}

std::string FindingText::trashLine(const Suggestions::TrashInfo& trash, const std::string& locale) {
  const Bytes hidden = trash.hiddenSize();
  if (hidden < trash.size - hidden) return i18n("It takes space until you empty it.");
  return i18n(PlatformWords::hiddenInTrash, {{"size", ByteFormat::string(hidden, locale)}});
}

std::string FindingText::oldBackupTitle(const DeviceBackup& backup, const std::string& locale) {
  return i18n("{size} in an old backup of {device}",
              {{"size", ByteFormat::string(backup.size, locale)}, {"device", backup.name}});
}

std::string FindingText::oldBackupLine(const DeviceBackup& backup, Date now, const std::string& locale) {
  if (!backup.lastBackup) return i18n("Newer backups aren't affected.");
  return i18n("Last backed up {age}. Newer backups aren't affected.",
              {{"age", RelativeTime::age(*backup.lastBackup, now, locale)}});
}

std::string FindingText::worktreeLine(const GitWorktree& worktree, Date now, const std::string& locale) {
  if (worktree.isOrphaned) return i18n(repositoryIsGone);
  if (!worktree.lastUsed) return "";
  return i18n("used {age}", {{"age", RelativeTime::age(*worktree.lastUsed, now, locale)}});
}

}  // namespace spacemint
