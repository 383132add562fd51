#include "Spacemint/model/SpaceWarnings.h"

#include "Spacemint/model/WarningText.h"

namespace spacemint {

SpaceWarnings::SpaceWarnings(const Parts& parts, const Desktop& desktop, Words words, bool mayNotify)
    : parts_(parts),
      desktop_(desktop),
      words_(std::move(words)),
      mayNotify_(mayNotify) {
  connect(&desktop_.notifier, &Notifier::serviceAppeared, this, &SpaceWarnings::tryAgain);
}

SpaceLevel SpaceWarnings::level() const {
  const auto& volume = parts_.volume.status();
  if (!volume) return SpaceLevel::ok;
  return spaceLevel(volume->free, parts_.preferences.warningThresholdGB());
}

void SpaceWarnings::evaluate() {
  const auto& volume = parts_.volume.status();
  if (!volume) return;
  const auto next = WarningState::after(lastWarning_, {.free = volume->free,
                                                       .thresholdGB = parts_.preferences.warningThresholdGB(),
                                                       .now = desktop_.clock.now()});
  if (!next.warns) {
    lastWarning_ = next.last;
    isDue_ = false;
    return;
  }
  if (attempt_ != Attempt::none) return;
  const bool isFirstAttempt = !std::exchange(isDue_, true);
  warn(*next.last);
  const bool mayScan = parts_.preferences.hasStarted() && parts_.history.isLoaded();
  if (isFirstAttempt && mayScan && parts_.scans.isStale(staleAfter)) parts_.scans.scan();
}

void SpaceWarnings::warn(const Warning& warning) {
  if (!mayNotify_) return finish(warning, true);
  attempt_ = Attempt::running;
  desktop_.notifier
      .show(WarningText::warning({.volume = *parts_.volume.status(),
                                  .level = warning.level,
                                  .growth = parts_.findings.findings().growth,
                                  .home = words_.home,
                                  .locale = words_.locale}))
      .then(whileAlive(this, [this, warning](bool isAccepted) { finish(warning, isAccepted); }));
}

void SpaceWarnings::finish(const Warning& warning, bool isAccepted) {
  if (isAccepted) {
    lastWarning_ = warning;
    isDue_ = false;
    attempt_ = Attempt::none;
    return;
  }
  attempt_ = Attempt::refused;
  desktop_.clock.after(retryAfter, this, [this] { tryAgain(); });
}

void SpaceWarnings::tryAgain() {
  if (attempt_ != Attempt::refused) return;
  attempt_ = Attempt::none;
  evaluate();
}

void SpaceWarnings::sendTestNotification() {
  if (mayNotify_) desktop_.notifier.show(WarningText::test(parts_.preferences.warningThresholdGB()));
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

}  // namespace spacemint
