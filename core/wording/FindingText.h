#pragma once

#include "core/analysis/Changes.h"
#include "core/analysis/DeviceBackups.h"
#include "core/analysis/GitWorktrees.h"
#include "core/analysis/GrowthWatch.h"
#include "core/analysis/Suggestions.h"
#include "core/base/PlatformWords.h"
#include "core/base/Translation.h"
#include "core/volume/SpaceLevel.h"

#include <string>
#include <string_view>

namespace spacemint {

/// Sentences about findings, shared by the application and spacemintctl, in the user's language; i18n
/// translates the constants. `locale` is an ICU locale identifier. Any thread.
namespace FindingText {

inline constexpr const char* excludedTitle = i18nMark("Left out of scans");
inline constexpr const char* otherExcludes =
    i18nMark("These two scans left out different files, so they can't be compared.");
inline constexpr const char* nothingToCompare =
    i18nMark("After the next scan, this shows where new space went.");
inline constexpr const char* shrunkTitle = i18nMark("Shrunk or gone");
inline constexpr const char* nothingToClean = i18nMark("Nothing obvious to clean up.");
inline constexpr const char* noOldWorktrees = i18nMark("No worktrees untouched for a month.");
inline constexpr const char* repositoryIsGone = i18nMark("Repository is gone");
inline constexpr const char* startDocker = PlatformWords::startDocker;
inline constexpr const char* noDockerData = i18nMark("Docker keeps nothing.");
inline constexpr const char* openOllama = i18nMark("Open Ollama to see your models.");
inline constexpr const char* noOllamaModels = i18nMark("No models.");

/// "Free space dropped by 2 GB, from 34 GB to 32 GB". Without the second half if both figures would look the
/// same.
std::string freeChange(Bytes before, Bytes after, const std::string& locale);
/// The same with where it went, if part of it lies outside of the scanned folder: "…: 12 GB in your home
/// folder, 2 GB elsewhere". Parts under 100 MB are left out; after a change under 100 MB the free space "is
/// as it was".
std::string freeChange(const SpaceChange& change, std::string_view home, const std::string& locale);

/// What a scan left out, as "Snapshot from 3 days ago" or "Network folder". `now` is the time of reading.
std::string leftOutTitle(const LeftOut& item, Date now, const std::string& locale);
/// "2 files and folders, 1 of unknown size", of what the user excluded.
std::string excludedItems(const ExcludedSum& sum, const std::string& locale);
/// "Stopped: 60 % measured", of a part from 0 (unknown) to 1.
std::string stoppedScan(double measuredPart);

/// "12 GB", with "at least" in front if parts could not be read.
std::string folderSize(Bytes size, bool isLowerBound, const std::string& locale);

/// In place of the results of a search: "Nothing found. The scan has files and folders from 20 MB on."
/// `minimum` is the scan's; up to 1 byte the scan has everything, and no sentence names it.
std::string nothingFound(Bytes minimum, const std::string& locale);
/// "No files over 20 MB."
std::string noLargeFiles(Bytes minimum, const std::string& locale);

/// "Nothing grew by more than 100 MB."
std::string nothingGrew(Bytes minimum, const std::string& locale);
/// "120 MB a day"; empty if the scans are at most two days apart.
std::string perDay(Bytes growth, std::chrono::microseconds between, const std::string& locale);
/// "−1.2 GB", with a true minus sign.
std::string lost(Bytes bytes, const std::string& locale);
/// What is left of something that shrank: "gone", "1.2 GB left" or "under 20 MB left". `minNodeSize` is that
/// of the newer scan.
std::string left(const Shrinkage& shrinkage, Bytes minNodeSize, const std::string& locale);
/// "7.4 MB/s for 3 minutes", in the first minute "7.4 MB/s"; or "Stopped after 3 minutes".
std::string pace(const GrowthLine& line, const std::string& locale);
/// "+2.1 GB in 1 min"
std::string inTheLastMinute(const GrowthLine& line, const std::string& locale);
/// "full in 5 min at this pace"
std::string fullIn(std::chrono::seconds time);
/// "~/vm/disk.img grew by 12 GB in the last 10 minutes." `path` is the line's path as users read it.
std::string culprit(const GrowthLine& line, const std::string& path, const std::string& locale);
/// "No package or build caches over 50 MB."
std::string noCaches(Bytes minimum, const std::string& locale);

/// The sentence for a tool that failed; `reason` is the tool's error message.
std::string dockerFailed(const std::string& reason);
std::string ollamaFailed(const std::string& reason);
/// "3 of 7 in use"
std::string inUse(std::int64_t active, std::int64_t count);

/// "frees at most 12 MB": the removal of a file that shares its blocks or is compressed.
std::string freesAtMost(Bytes bytes, const std::string& locale);

/// The sentence for the levels `low` and `critical`; empty for `ok`.
std::string warning(SpaceLevel level, std::int64_t thresholdGB);

std::string trashTitle(const Suggestions::TrashInfo& trash, const std::string& locale);
/// The line under the title. Says if most of the Trash consists of hidden items.
std::string trashLine(const Suggestions::TrashInfo& trash, const std::string& locale);

std::string oldBackupTitle(const DeviceBackup& backup, const std::string& locale);
std::string oldBackupLine(const DeviceBackup& backup, Date now, const std::string& locale);

/// When the worktree was last used, or that its repository is gone; empty if neither is known.
std::string worktreeLine(const GitWorktree& worktree, Date now, const std::string& locale);

}  // namespace FindingText

}  // namespace spacemint
