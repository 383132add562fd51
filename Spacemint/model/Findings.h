#pragma once

#include "Spacemint/model/ScanHistory.h"
#include "core/analysis/Changes.h"
#include "core/analysis/DevTools.h"
#include "core/analysis/DeviceBackups.h"
#include "core/analysis/GitWorktrees.h"
#include "core/analysis/HuggingFace.h"
#include "core/analysis/Suggestions.h"

namespace spacemint {

/// What was found in the current scan.
struct Findings {
  /// Folders that grew since the baseline.
  std::vector<Growth> growth = {};
  std::vector<Suggestion> suggestions = {};
  /// The Trash, when it is large enough for a card of its own.
  std::optional<Suggestions::TrashInfo> trash = {};
  std::vector<DeviceBackup> deviceBackups = {};
  std::vector<GitWorktree> worktrees = {};
  std::vector<DevTools::FoundCleanup> devCleanups = {};
  std::vector<DevTools::HuggingFaceItem> huggingFace = {};
  std::vector<FileItem> largestFiles = {};
  /// What was free at the baseline, when that is a scan of the same folder.
  std::optional<Bytes> baselineFree = {};
  /// The baseline could not be read.
  bool baselineUnavailable = false;

  static constexpr Bytes growthMinimum = 100'000'000;
  static constexpr std::size_t growthLimit = 10;
  static constexpr Bytes suggestionMinimum = 500'000'000;
  static constexpr Bytes trashMinimum = 1'000'000'000;
  static constexpr Bytes worktreeMinimum = 100'000'000;
  static constexpr Bytes cacheMinimum = 50'000'000;
  static constexpr std::size_t fileLimit = 100;

  struct Question {
    const Snapshot& snapshot;
    std::optional<SnapshotStore::Entry> baselineEntry = {};
    SnapshotStore store;
    std::string home;
    Environment environment = {};
  };

  /// Reads the baseline, and what the analyses read of the disk. Any thread.
  static Findings in(const Question& question);
};

}  // namespace spacemint
