#pragma once

#include "Spacemint/model/CleanupRuns.h"
#include "Spacemint/model/DeveloperTools.h"
#include "core/analysis/DevTools.h"
#include "core/analysis/DeviceBackups.h"
#include "core/analysis/GitWorktrees.h"
#include "core/cleanup/DeletionGuard.h"
#include "core/host/Removal.h"
#include "core/places/TrashPlace.h"

#include <QObject>

namespace spacemint {

/// Every clean-up that the interface offers, ready to be run. Making one touches nothing. Main thread only;
/// the jobs must not outlive this.
class CleanupJobs : public QObject {
  Q_OBJECT
 public:
  using Failure = CleanupJob::Failure;

  struct Parts {
    const DeletionGuard& guard;
    const ToolRuns& runs;
    VolumeWatch& volume;
    DeveloperTools& developerTools;
  };

  struct Places {
    std::string home;
    /// Where programs keep their data.
    std::string data;
  };

  CleanupJobs(const Parts& parts, const Desktop& desktop, Places places)
      : parts_(parts),
        desktop_(desktop),
        places_(std::move(places)) {}

  // Each identity is that of the item when it was shown: another one in its place is left alone.

  CleanupJob deleteItem(const std::string& path, const std::string& name, FileIdentity identity) const;
  CleanupJob deleteBackup(const DeviceBackup& backup, FileIdentity identity) const;
  /// `changes` are git's uncommitted ones, absent when they could not be counted.
  CleanupJob removeWorktree(const GitWorktree& worktree, std::optional<int> changes,
                            FileIdentity identity) const;
  CleanupJob cleanCache(const DevTools::FoundCleanup& found, FileIdentity identity) const;
  CleanupJob emptyTrash(const TrashPlace& trash) const;
  /// For when we may not look into the Trash ourselves. `expected` is what it takes.
  CleanupJob emptyTrashByFileManager(const TrashPlace& trash, Bytes expected);
  CleanupJob pruneDocker() const;
  CleanupJob pruneDockerVolumes() const;
  CleanupJob removeOllamaModel(const DevTools::OllamaModel& model) const;

 private:
  template <class Work>
  std::function<QFuture<Failure>()> inBackground(Work work) const;
  std::function<QFuture<Failure>()> deletion(const std::string& path, FileIdentity identity) const;
  std::function<QFuture<Failure>()> toolRun(const char* program, std::vector<std::string> arguments) const;
  CleanupJob dockerRun(CleanupJob job) const;

  Parts parts_;
  Desktop desktop_;
  Places places_;
};

}  // namespace spacemint
