#include "Spacemint/model/SpaceWarnings.h"

#include "Spacemint/model/WarningText.h"

namespace spacemint {

SpaceWarnings::SpaceWarnings(const Parts& parts, const Desktop& desktop, Words words, bool mayNotify)
    : parts_(parts),
      desktop_(desktop),
      words_(std::move(words)),
      mayNotify_(mayNotify) {}

SpaceLevel SpaceWarnings::level() const {
  const auto& volume = parts_.volume.status();
  if (!volume) return SpaceLevel::ok;
  return spaceLevel(volume->free, WarningState::usableThreshold(parts_.preferences.warningThresholdGB()));
}

void SpaceWarnings::evaluate() {
  const auto& volume = parts_.volume.status();
  if (!volume) return;
  const auto next = WarningState::after(lastWarning_, {.free = volume->free,
                                                       .thresholdGB = parts_.preferences.warningThresholdGB(),
                                                       .now = desktop_.clock.now()});
  lastWarning_ = next.last;
  if (!next.warns) return;
  post(WarningText::warning({.volume = *volume,
                             .level = lastWarning_->level,
                             .growth = parts_.findings.findings().growth,
                             .home = words_.home,
                             .locale = words_.locale}));
  const bool mayScan = parts_.preferences.hasStarted() && parts_.history.isLoaded();
  if (mayScan && parts_.scans.isStale(staleAfter)) parts_.scans.scan();
}

void SpaceWarnings::sendTestNotification() {
  post(WarningText::test(parts_.preferences.warningThresholdGB()));
}

void SpaceWarnings::requestAuthorization() {
  if (!mayNotify_) return;
  desktop_.notifier.requestAuthorization().then(
      whileAlive(this, [this](bool) { refreshNotificationStatus(); }));
}

void SpaceWarnings::refreshNotificationStatus() {
  if (!mayNotify_) return;
  desktop_.notifier.isAllowed().then(whileAlive(this, [this](bool isAllowed) {
    if (std::exchange(notificationsAllowed_, isAllowed) != isAllowed) Q_EMIT notificationsAllowedChanged();
  }));
}

void SpaceWarnings::post(const Notification& notification) {
  if (mayNotify_) desktop_.notifier.post(notification);
}

}  // namespace spacemint
