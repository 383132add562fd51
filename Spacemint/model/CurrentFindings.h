#pragma once

#include "Spacemint/model/Findings.h"

#include <QObject>

namespace spacemint {

/// Keeps the findings in step with the current scan and its baseline. Main thread only; the work is done on
/// others.
class CurrentFindings : public QObject {
  Q_OBJECT
 public:
  struct Home {
    std::string path;
    Environment environment = {};
  };

  CurrentFindings(ScanHistory& history, Tasks& tasks, Home home);

  const Findings& findings() const { return findings_; }

 Q_SIGNALS:
  // Each says that this part is another than before.
  void growthChanged();
  void suggestionsChanged();
  void trashChanged();
  void deviceBackupsChanged();
  void worktreesChanged();
  void devCleanupsChanged();
  void huggingFaceChanged();
  void largestFilesChanged();
  void baselineChanged();

 private:
  void recompute();
  void assign(Findings findings);

  ScanHistory& history_;
  Tasks& tasks_;
  Home home_;
  Findings findings_;
};

}  // namespace spacemint
