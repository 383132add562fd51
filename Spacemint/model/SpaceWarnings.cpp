#include "Spacemint/model/SpaceWarnings.h"

#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/Log.h"
#include "core/base/TextList.h"
#include "core/base/Translation.h"
#include "core/tree/Paths.h"
#include "core/wording/FindingText.h"
#include "core/wording/SupplyText.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace spacemint {

namespace {

bool isRecent(Date warned, Date now) {
  return warned <= now && now - warned < WarningState::minimumGap;
}

}  // namespace

WarningState::Next WarningState::after(const std::optional<Warning>& last, const Reading& reading) {
  const SpaceLevel level = reading.limits.levelOf(reading.free);
  if (level == SpaceLevel::ok) {
    return {.last = reading.free > reading.limits.rearmsAbove ? std::nullopt : last};
  }
  const bool isWorse = last && level > last->level;
  if (last && !isWorse && isRecent(last->date, reading.now)) return {.last = last};
  return {.last = Warning{.date = reading.now, .level = level}, .warns = true};
}

Notification WarningText::warning(const Arguments& arguments) {
  const auto& supplies = arguments.supplies;
  const bool isCritical = std::ranges::any_of(
      supplies, [](const Supply& supply) { return supply.level() == SpaceLevel::critical; });
  std::vector<std::string> body;
  body.reserve(supplies.size() + 2);
  for (const Supply& supply : supplies) body.push_back(SupplyText::sentence(supply, arguments.locale));
  const bool isAboutHome = std::ranges::any_of(supplies, &Supply::isHome);
  if (isAboutHome && arguments.culprit) {
    const std::string path = isolatedPath(Paths::display(arguments.culprit->path, arguments.home));
    body.push_back(FindingText::culprit(*arguments.culprit, path, arguments.locale));
  } else if (isAboutHome && !arguments.growth.empty()) {
    const Growth& first = arguments.growth.front();
    body.push_back(i18n("{path} grew by {size} recently.",
                        {{"path", isolatedPath(Paths::display(first.path, arguments.home))},
                         {"size", ByteFormat::string(first.delta, arguments.locale)}}));
  }
  body.push_back(i18n("Click to see what's using space."));
  return {.title = supplies.size() == 1 ? SupplyText::title(supplies.front())
                   : isCritical         ? i18n("Your disks are almost full")
                                        : i18n("Disk space is running low"),
          .body = sentences(body),
          .isCritical = isCritical,
          .hasSound = true};
}

Notification WarningText::test(std::int64_t thresholdGB, const std::string& locale) {
  return {.title = i18n("Spacemint notifications work"),
          .body = i18n("You'll be warned when free space drops below {number} GB.",
                       {{"number", groupedNumber(thresholdGB, locale)}})};
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

std::optional<Supply> SpaceWarnings::lowFiles() const {
  for (const Supply& supply : supplies()) {
    const bool isFiles = supply.isHome() && supply.resource == Resource::files;
    if (isFiles && supply.level() != SpaceLevel::ok) return supply;
  }
  return std::nullopt;
}

std::vector<Supply> SpaceWarnings::supplies() const {
  const std::int64_t threshold = parts_.preferences.warningThresholdGB();
  std::vector<Supply> supplies;
  if (const auto& home = parts_.volume.status()) {
    supplies.push_back({.name = home->name, .free = home->free, .limits = homeLimits(threshold)});
  }
  const std::vector<std::string> unwatched = parts_.preferences.unwatchedVolumes();
  for (const VolumeReading& reading : parts_.volume.volumes()) {
    if (std::ranges::count(unwatched, reading.volume.mountPoint()) > 0) continue;
    std::ranges::move(suppliesOf(reading, threshold), std::back_inserter(supplies));
  }
  return supplies;
}

std::optional<Warning> SpaceWarnings::lastOf(const Key& key) const {
  const auto found = lastWarnings_.find(key);
  return found != lastWarnings_.end() ? std::optional{found->second} : std::nullopt;
}

// A volume that did not answer in time was not refilled meanwhile, as far as anybody knows.
void SpaceWarnings::holdUnanswered(Warnings& held) const {
  for (const auto& [volume, space] : parts_.volume.volumes()) {
    for (const Resource resource : {Resource::space, Resource::files}) {
      const Key key{volume.pool, resource};
      const auto last = space ? std::nullopt : lastOf(key);
      if (last) held.emplace(key, *last);
    }
  }
}

SpaceWarnings::Assessment SpaceWarnings::assess() const {
  Assessment now;
  holdUnanswered(now.held);
  for (Supply& supply : supplies()) {
    const Key key{supply.pool, supply.resource};
    const auto last = lastOf(key);
    const auto next = WarningState::after(
        last, {.free = supply.free, .limits = supply.limits, .now = desktop_.clock.now()});
    if (const auto& kept = next.warns ? last : next.last) now.held.emplace(key, *kept);
    if (!next.warns) continue;
    now.due.emplace(key, *next.last);
    now.low.push_back(std::move(supply));
  }
  return now;
}

bool SpaceWarnings::isDue() const {
  return attempt_ == Attempt::none && !assess().due.empty();
}

void SpaceWarnings::evaluate() {
  Assessment now = assess();
  // The states of volumes that are gone go, too.
  lastWarnings_ = std::move(now.held);
  if (now.due.empty()) {
    if (level() != SpaceLevel::ok)
      log(LogLevel::debug, "low space: the user was warned less than 12 hours ago");
    isDue_ = false;
    return;
  }
  if (attempt_ != Attempt::none) return;
  const bool isFirstAttempt = !std::exchange(isDue_, true);
  warn(now.low, now.due);
  const bool mayScan = parts_.preferences.hasStarted() && parts_.history.isLoaded();
  if (isFirstAttempt && mayScan && parts_.scans.isStale(staleAfter)) parts_.scans.scan();
}

void SpaceWarnings::warn(const std::vector<Supply>& supplies, const Warnings& warnings) {
  if (!context_.mayNotify) return finish(warnings, true);
  attempt_ = Attempt::running;
  if (!parts_.growing.isKnown()) return show(supplies, warnings);
  // The warning names what grew until now.
  parts_.growing.refresh([this, supplies, warnings] { show(supplies, warnings); });
}

void SpaceWarnings::show(const std::vector<Supply>& supplies, const Warnings& warnings) {
  // What grows is in the home folder: it does not fill another volume.
  const bool isAboutHome = std::ranges::any_of(supplies, &Supply::isHome);
  const std::optional<GrowthLine> culprit = isAboutHome ? parts_.growing.culprit() : std::nullopt;
  namedFolder_ = culprit ? culprit->path : "";
  if (culprit && !culprit->isDirectory) namedFolder_ = Paths::parent(namedFolder_);
  desktop_.notifier.show(WarningText::warning({.supplies = supplies,
                                               .growth = parts_.findings.findings().growth,
                                               .culprit = culprit,
                                               .home = context_.home,
                                               .locale = context_.locale}),
                         this, [this, warnings](bool isAccepted) { finish(warnings, isAccepted); });
}

void SpaceWarnings::finish(const Warnings& warnings, bool isAccepted) {
  log(LogLevel::info, !context_.mayNotify ? "low space: this program does not notify"
                      : isAccepted        ? "low space: the user was warned"
                                   : "low space: no notification service accepted the warning; it waits");
  if (isAccepted) {
    for (const auto& [key, warning] : warnings) lastWarnings_.insert_or_assign(key, warning);
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
  desktop_.notifier.show(WarningText::test(parts_.preferences.warningThresholdGB(), context_.locale), this,
                         [](bool) {});
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
