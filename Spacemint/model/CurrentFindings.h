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
  /// Whether the current scan was looked through; until then nothing was found and may yet be.
  bool isReady() const { return isReady_; }

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
  /// The scan was looked through: all parts are as they are now.
  void updated();

 private:
  void recompute();
  void assign(Findings findings);

  ScanHistory& history_;
  Tasks& tasks_;
  Home home_;
  Findings findings_;
  bool isReady_ = false;
};

}  // namespace spacemint
