#pragma once

#include "Spacemint/model/AppContext.h"
#include "Spacemint/model/ScanHistory.h"
#include "core/analysis/ChangeTree.h"
#include "core/analysis/Changes.h"
#include "core/analysis/DevTools.h"
#include "core/analysis/DeviceBackups.h"
#include "core/analysis/FileKinds.h"
#include "core/analysis/GitWorktrees.h"
#include "core/analysis/HuggingFace.h"
#include "core/analysis/Suggestions.h"

#include <QObject>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// The results of all analyses of one scan.
struct Findings {
  /// Folders that grew since the baseline.
  std::vector<Growth> growth = {};
  /// Folders and files that shrank since the baseline or are gone.
  std::vector<Shrinkage> shrinkage = {};
  /// The time from the baseline to the scan.
  std::chrono::microseconds comparedTime{0};
  std::vector<Suggestion> suggestions = {};
  /// The Trash, when it is large enough for a card of its own.
  std::optional<Suggestions::TrashInfo> trash = {};
  std::vector<DeviceBackup> deviceBackups = {};
  std::vector<GitWorktree> worktrees = {};
  std::vector<DevTools::FoundCleanup> devCleanups = {};
  std::vector<DevTools::HuggingFaceItem> huggingFace = {};
  std::vector<FileItem> largestFiles = {};
  /// By path, for those of `largestFiles` whose removal frees less than their size, in bytes.
  std::map<std::string, Bytes> freesAtMost = {};
  /// The kinds of the files of the scan.
  std::vector<KindTotal> kinds = {};
  /// The free space since the baseline; absent when the baseline is of another folder.
  std::optional<SpaceChange> spaceChange = {};
  /// All that changed since the baseline; null when there is nothing to compare with.
  std::shared_ptr<const ChangeTree> changes = {};
  /// The one of `Question::baselines` that the scan was compared with; the first if with none.
  std::optional<SnapshotStore::Entry> baselineEntry = {};
  /// The baseline could not be read.
  bool baselineUnavailable = false;
  /// The baseline was made with other excludes, so nothing is compared.
  bool baselineLeftOutOthers = false;

  static constexpr Bytes growthMinimum = 100'000'000;
  static constexpr std::size_t growthLimit = 10;
  static constexpr Bytes suggestionMinimum = 500'000'000;
  static constexpr Bytes trashMinimum = 1'000'000'000;
  static constexpr Bytes worktreeMinimum = 100'000'000;
  static constexpr Bytes cacheMinimum = 50'000'000;
  static constexpr std::size_t fileLimit = 100;

  struct Question {
    const Snapshot& snapshot;
    /// The scan is compared with the first that left out the same files.
    std::vector<SnapshotStore::Entry> baselines = {};
    SnapshotStore store;
    std::string home;
    Environment environment = {};
  };

  /// Analyses the scan. Reads the baselines from the history, and files of the disk. Any thread.
  static Findings in(const Question& question);
};

/// The findings of the current scan and its baseline. Computes them again on another thread when one of the
/// two changes. Main thread only.
class CurrentFindings : public QObject {
  Q_OBJECT
 public:
  CurrentFindings(ScanHistory& history, Tasks& tasks, const AppContext& context);

  const Findings& findings() const { return findings_; }
  /// False until the findings of the first scan are computed.
  bool isReady() const { return isReady_; }

 Q_SIGNALS:
  // One signal for each part of the findings that differs from before.
  void growthChanged();
  void suggestionsChanged();
  void trashChanged();
  void deviceBackupsChanged();
  void worktreesChanged();
  void devCleanupsChanged();
  void huggingFaceChanged();
  void largestFilesChanged();
  void baselineChanged();
  /// The findings were computed again, with or without a difference. Comes after the signals of the parts.
  void updated();

 private:
  void recompute();
  void assign(Findings findings);

  ScanHistory& history_;
  Tasks& tasks_;
  const AppContext& context_;
  Findings findings_;
  bool isReady_ = false;
};

}  // namespace spacemint
