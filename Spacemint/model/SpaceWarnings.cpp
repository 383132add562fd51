#include "Spacemint/model/SpaceWarnings.h"

#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/Log.h"
#include "core/tree/Paths.h"

#include <utility>

namespace spacemint {

namespace {

bool isRecent(Date warned, Date now) {
  return warned <= now && now - warned < WarningState::minimumGap;
}

}  // namespace

WarningState::Next WarningState::after(const std::optional<Warning>& last, const Reading& reading) {
  const SpaceLevel level = spaceLevel(reading.free, reading.thresholdGB);
  if (level == SpaceLevel::ok) {
    const bool isRearmed = reading.free - warningThreshold(reading.thresholdGB) > rearmMargin;
    return {.last = isRearmed ? std::nullopt : last};
  }
  const bool isWorse = last && level > last->level;
  if (last && !isWorse && isRecent(last->date, reading.now)) return {.last = last};
  return {.last = Warning{.date = reading.now, .level = level}, .warns = true};
}

Notification WarningText::warning(const Arguments& arguments) {
  const bool isCritical = arguments.level == SpaceLevel::critical;
  std::string body = "Only " + ByteFormat::string(arguments.volume.free, arguments.locale) + " left on " +
                     isolatedName(arguments.volume.name) + ".";
  if (!arguments.growth.empty()) {
    const Growth& first = arguments.growth.front();
    body += " " + isolatedPath(Paths::display(first.path, arguments.home)) + " grew by " +
            ByteFormat::string(first.delta, arguments.locale) + " recently.";
  }
  return {.title = isCritical ? "Your disk is almost full" : "Disk space is running low",
          .body = body + " Click to see what's using space.",
          .isCritical = isCritical,
          .hasSound = true};
}

Notification WarningText::test(std::int64_t thresholdGB) {
  return {.title = "Spacemint notifications work",
          .body = "You'll be warned when free space drops below " + std::to_string(thresholdGB) + " GB."};
}

SpaceWarnings::SpaceWarnings(const Parts& parts, const AppContext& context, const Desktop& desktop)
    : parts_(parts),
      context_(context),
      desktop_(desktop) {
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
    if (level() != SpaceLevel::ok)
      log(LogLevel::debug, "low space: the user was warned less than 12 hours ago");
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
  if (!context_.mayNotify) return finish(warning, true);
  attempt_ = Attempt::running;
  desktop_.notifier.show(WarningText::warning({.volume = *parts_.volume.status(),
                                               .level = warning.level,
                                               .growth = parts_.findings.findings().growth,
                                               .home = context_.home,
                                               .locale = context_.locale}),
                         this, [this, warning](bool isAccepted) { finish(warning, isAccepted); });
}

void SpaceWarnings::finish(const Warning& warning, bool isAccepted) {
  log(LogLevel::info, !context_.mayNotify ? "low space: this program does not notify"
                      : isAccepted        ? "low space: the user was warned"
                                   : "low space: no notification service accepted the warning; it waits");
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
  if (!context_.mayNotify) return;
  desktop_.notifier.show(WarningText::test(parts_.preferences.warningThresholdGB()), this, [](bool) {});
}

void SpaceWarnings::requestAuthorization() {
  if (!context_.mayNotify) return;
  desktop_.notifier.requestAuthorization(this, [this](bool) { refreshNotificationStatus(); });
}

void SpaceWarnings::refreshNotificationStatus() {
  if (!context_.mayNotify) return;
  desktop_.notifier.askIfAllowed(this, [this](bool isAllowed) {
    if (std::exchange(notificationsAllowed_, isAllowed) != isAllowed) Q_EMIT notificationsAllowedChanged();
  });
}

}  // namespace spacemint
