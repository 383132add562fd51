#include "core/wording/FindingText.h"

#include "core/base/ByteFormat.h"
#include "core/base/RelativeTime.h"
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
  if (minutes < 1) return "less than a minute";
  const auto number = minutes < 120 ? minutes : minutes / 60;
  const std::string unit = minutes < 120 ? " minute" : " hour";
  return std::to_string(number) + unit + (number == 1 ? "" : "s");
}

}  // namespace

std::string FindingText::freeChange(Bytes before, Bytes after, const std::string& locale) {
  const Bytes change = saturatingSubtract(after, before);
  const auto text = [&](Bytes bytes) { return ByteFormat::string(bytes, locale); };
  const std::string said = change < 0 ? "Free space dropped by " + text(saturatingSubtract(0, change))
                                      : "Free space grew by " + text(change);
  const std::string from = text(before);
  const std::string to = text(after);
  return change != 0 && from == to ? said : said + ", from " + from + " to " + to;
}

std::string FindingText::freeChange(const SpaceChange& change, std::string_view home,
                                    const std::string& locale) {
  constexpr Bytes smallestPart = 100'000'000;
  std::string text = freeChange(change.freeBefore, change.freeNow, locale);
  const Bytes elsewhere = change.elsewhere().value_or(0);
  if (std::abs(elsewhere) < smallestPart) return text;
  const bool isDisk = change.root == wholeDisk;
  const std::string folder = isDisk                ? "in files"
                             : change.root == home ? "in your home folder"
                                                   : "in " + Paths::display(change.root, home);
  const auto part = [&](Bytes bytes, const std::string& place) {
    const std::string less = bytes < 0 ? " less " : " ";
    return ByteFormat::string(std::abs(bytes), locale) + less + place;
  };
  text += ": ";
  if (std::abs(*change.inFolder) >= smallestPart) text += part(*change.inFolder, folder) + ", ";
  return text + part(elsewhere, isDisk ? "not in files" : "elsewhere");
}

std::string FindingText::leftOutTitle(const LeftOut& item, Date now, const std::string& locale) {
  switch (item.kind) {
    case LeftOut::Kind::volume:
      return "Another disk";
    case LeftOut::Kind::snapshot:
      return item.created ? "Snapshot from " + RelativeTime::age(*item.created, now, locale) : "Snapshots";
    case LeftOut::Kind::removable:
      return "Removable disk";
    case LeftOut::Kind::remote:
      return "Network folder";
  }
  return "";
}

std::string FindingText::folderSize(Bytes size, bool isLowerBound, const std::string& locale) {
  return (isLowerBound ? "at least " : "") + ByteFormat::string(size, locale);
}

std::string FindingText::nothingGrew(Bytes minimum, const std::string& locale) {
  return "Nothing grew by more than " + ByteFormat::string(minimum, locale) + ".";
}

std::string FindingText::perDay(Bytes growth, std::chrono::microseconds between, const std::string& locale) {
  constexpr std::chrono::days shortest{2};
  if (between <= shortest) return "";
  const double days = std::chrono::duration<double, std::chrono::days::period>{between}.count();
  return ByteFormat::string(std::llround(static_cast<double>(growth) / days), locale) + " a day";
}

std::string FindingText::lost(Bytes bytes, const std::string& locale) {
  return "\u2212" + ByteFormat::string(bytes, locale);
}

std::string FindingText::left(const Shrinkage& shrinkage, Bytes minNodeSize, const std::string& locale) {
  if (shrinkage.isGone) return "gone";
  if (shrinkage.size > 0) return ByteFormat::string(shrinkage.size, locale) + " left";
  return "under " + ByteFormat::string(std::max<Bytes>(minNodeSize, 1), locale) + " left";
}

std::string FindingText::pace(const GrowthLine& line, const std::string& locale) {
  const std::string length = lengthText(line.duration);
  if (!line.isGoingOn) return "Stopped after " + length;
  const std::string rate = ByteFormat::string(line.perSecond(), locale) + "/s";
  return line.duration < std::chrono::minutes{1} ? rate : rate + " for " + length;
}

std::string FindingText::inTheLastMinute(const GrowthLine& line, const std::string& locale) {
  return "+" + ByteFormat::string(line.figures.minute, locale) + " in 1 min";
}

std::string FindingText::fullIn(std::chrono::seconds time) {
  const auto minutes = std::max<std::int64_t>(std::chrono::round<std::chrono::minutes>(time).count(), 1);
  const std::string length = minutes < 120       ? std::to_string(minutes) + " min"
                             : minutes < 48 * 60 ? std::to_string(minutes / 60) + " hours"
                                                 : std::to_string(minutes / (24 * 60)) + " days";
  return "full in " + length + " at this pace";
}

std::string FindingText::culprit(const GrowthLine& line, const std::string& path, const std::string& locale) {
  return path + " grew by " + ByteFormat::string(line.figures.tenMinutes, locale) +
         " in the last 10 minutes.";
}

std::string FindingText::noCaches(Bytes minimum, const std::string& locale) {
  return "No package or build caches over " + ByteFormat::string(minimum, locale) + ".";
}

std::string FindingText::dockerFailed(const std::string& reason) {
  return "Couldn't read Docker's disk usage: " + reason;
}

std::string FindingText::ollamaFailed(const std::string& reason) {
  return "Couldn't read Ollama's models: " + reason;
}

std::string FindingText::inUse(std::int64_t active, std::int64_t count) {
  return std::to_string(active) + " of " + std::to_string(count) + " in use";
}

std::string FindingText::freesAtMost(Bytes bytes, const std::string& locale) {
  return "frees at most " + ByteFormat::string(bytes, locale);
}

std::string FindingText::warning(SpaceLevel level, std::int64_t thresholdGB) {
  switch (level) {
    case SpaceLevel::ok:
      return "";
    case SpaceLevel::critical:
      return "Your disk is almost full. Free up space soon.";
    case SpaceLevel::low:
      return "You're below your " + std::to_string(thresholdGB) +
             " GB warning level. Here's where the space went.";
  }
  return "";
}

std::string FindingText::trashTitle(const Suggestions::TrashInfo& trash, const std::string& locale) {
  return ByteFormat::string(trash.size, locale) + " is sitting in the Trash";
}

std::string FindingText::trashLine(const Suggestions::TrashInfo& trash, const std::string& locale) {
  const Bytes hidden = trash.hiddenSize();
  if (hidden < trash.size - hidden) return "It takes space until you empty it.";
  return "Most of it is hidden (" + ByteFormat::string(hidden, locale) + "), so " +
         std::string{PlatformWords::fileManager} + " shows the Trash as empty.";
}

std::string FindingText::oldBackupTitle(const DeviceBackup& backup, const std::string& locale) {
  return ByteFormat::string(backup.size, locale) + " in an old backup of " + backup.name;
}

std::string FindingText::oldBackupLine(const DeviceBackup& backup, Date now, const std::string& locale) {
  const std::string others = "Newer backups aren't affected.";
  if (!backup.lastBackup) return others;
  return "Last backed up " + RelativeTime::age(*backup.lastBackup, now, locale) + ". " + others;
}

std::string FindingText::worktreeLine(const GitWorktree& worktree, Date now, const std::string& locale) {
  if (worktree.isOrphaned) return std::string{repositoryIsGone};
  return worktree.lastUsed ? "used " + RelativeTime::age(*worktree.lastUsed, now, locale) : "";
}

}  // namespace spacemint
