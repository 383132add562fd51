#include "Spacemint/model/CurrentFindings.h"

namespace spacemint {

CurrentFindings::CurrentFindings(ScanHistory& history, Tasks& tasks, Home home)
    : history_(history),
      tasks_(tasks),
      home_(std::move(home)) {
  connect(&history_, &ScanHistory::changed, this, &CurrentFindings::recompute);
}

void CurrentFindings::recompute() {
  const SharedSnapshot snapshot = history_.snapshot();
  if (!snapshot) return assign({});
  const auto baselineEntry = history_.baselineEntry();
  tasks_
      .run(Tasks::Priority::utility,
           [snapshot, baselineEntry, store = history_.store(), home = home_] {
             return Findings::in({.snapshot = *snapshot,
                                  .baselineEntry = baselineEntry,
                                  .store = store,
                                  .home = home.path,
                                  .environment = home.environment});
           })
      .then(whileAlive(this, [this, revision = history_.revision(), baselineEntry](Findings findings) {
        // Of an older state; those of the newer one are on their way.
        if (history_.revision() != revision || history_.baselineEntry() != baselineEntry) return;
        assign(std::move(findings));
      }));
}

void CurrentFindings::assign(Findings findings) {
  const Findings before = std::exchange(findings_, std::move(findings));
  const Findings& now = findings_;
  if (before.growth != now.growth) Q_EMIT growthChanged();
  if (before.suggestions != now.suggestions) Q_EMIT suggestionsChanged();
  if (before.trash != now.trash) Q_EMIT trashChanged();
  if (before.deviceBackups != now.deviceBackups) Q_EMIT deviceBackupsChanged();
  if (before.worktrees != now.worktrees) Q_EMIT worktreesChanged();
  if (before.devCleanups != now.devCleanups) Q_EMIT devCleanupsChanged();
  if (before.huggingFace != now.huggingFace) Q_EMIT huggingFaceChanged();
  if (before.largestFiles != now.largestFiles) Q_EMIT largestFilesChanged();
  if (before.baselineFree != now.baselineFree || before.baselineUnavailable != now.baselineUnavailable) {
    Q_EMIT baselineChanged();
  }
  isReady_ = history_.snapshot() != nullptr;
  Q_EMIT updated();
}

}  // namespace spacemint
