#include "Spacemint/views/ScanControl.h"

#include "Spacemint/views/ScanText.h"

namespace spacemint {

ScanControl::ScanControl(const UiHost& host) : host_(host) {
  connect(&scans(), &ScanLifecycle::progressChanged, this, &ScanControl::changed);
  connect(&host_.model.history(), &ScanHistory::snapshotChanged, this, &ScanControl::changed);
}

QString ScanControl::title() const {
  return QString::fromStdString(ScanText::title(scans().fraction()));
}

QString ScanControl::detail() const {
  const auto& progress = scans().progress();
  if (!progress) return {};
  return QString::fromStdString(
      ScanText::detail(progress->files, scans().timeRemaining(host_.desktop.clock.now()), host_.locale));
}

QString ScanControl::scanned() const {
  const SharedSnapshot& snapshot = host_.model.history().snapshot();
  if (!snapshot) return {};
  return QString::fromStdString(ScanText::scanned(
      {.snapshot = *snapshot, .now = host_.desktop.clock.now(), .home = host_.home, .locale = host_.locale}));
}

QString ScanControl::scannedHelp() const {
  const SharedSnapshot& snapshot = host_.model.history().snapshot();
  return snapshot ? QString::fromStdString(ScanText::scannedHelp(*snapshot, host_.locale)) : QString{};
}

}  // namespace spacemint
