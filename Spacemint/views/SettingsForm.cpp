#include "Spacemint/views/SettingsForm.h"

#include "Spacemint/views/ShownText.h"
#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/PlatformWords.h"
#include "core/base/Translation.h"
#include "core/scan/Excludes.h"
#include "core/tree/Paths.h"

#include <algorithm>

namespace spacemint {

namespace {

QStringList titles(std::span<const SettingChoice> choices) {
  QStringList result;
  for (const SettingChoice& choice : choices) result << ShownText::plain(i18n(choice.label));
  return result;
}

// Null if the view asks for a choice that does not exist.
const SettingsText::Choice* at(const std::vector<SettingsText::Choice>& choices, int index) {
  const auto place = static_cast<std::size_t>(index);
  return index >= 0 && place < choices.size() ? &choices[place] : nullptr;
}

std::vector<SettingsText::Choice> choicesOf(Setting setting, SettingsText::Choice stored) {
  std::vector<SettingsText::Choice> result;
  for (const SettingChoice& choice : describe(setting).choices) {
    result.push_back({std::get<std::int64_t>(choice.value), i18n(choice.label)});
  }
  const auto place = std::ranges::lower_bound(result, stored.value, {}, &SettingsText::Choice::value);
  if (place == result.end() || place->value != stored.value) result.insert(place, std::move(stored));
  return result;
}

}  // namespace

std::vector<SettingsText::Choice> SettingsText::thresholds(std::int64_t stored) {
  return choicesOf(Setting::warningThresholdGB,
                   {stored, i18n("{number} GB free", {{"number", numberText(stored)}})});
}

std::vector<SettingsText::Choice> SettingsText::intervals(std::int64_t stored) {
  // An interval of 0 hours means off.
  const std::string label =
      stored <= 0 ? i18n("Never")
                  : i18np("Every hour", "Every {count} hours", stored, {{"count", numberText(stored)}});
  return choicesOf(Setting::scanIntervalHours, {stored, label});
}

std::string SettingsText::scanFootnote(bool hasFullDiskAccess, const std::optional<std::string>& whyFull) {
  std::string text =
      hasFullDiskAccess
          ? i18n("Runs quietly in the background while your computer has nothing else to do.")
          : i18n(
                "Runs quietly in the background while your computer has nothing else to do. Some folders are "
                "closed to Spacemint and can't be measured.");
  if (!whyFull) return text;
  return text + '\n' +
         (whyFull->empty() ? i18n("Last scan: what had not changed was taken from the scan before.")
                           : i18n("Last scan: everything was walked, because {reason}.",
                                  {{"reason", i18n(whyFull->c_str())}}));
}

std::string SettingsText::loginError(const Error& error, const std::string& home) {
  // The message of a failed system call begins with the path.
  return i18n("Couldn't change this. {reason}.", {{"reason", Paths::display(error.message, home)}});
}

SettingsForm::SettingsForm(const UiHost& host) : host_(host) {
  subscription_ = prefs().observe(Preferences::followedAtOnce, [this](Setting) { Q_EMIT changed(); });
  connect(&host_.model.warnings(), &SpaceWarnings::notificationsAllowedChanged, this,
          &SettingsForm::notificationsAllowedChanged);
  connect(&host_.model.volume(), &VolumeWatch::volumesWereRead, this, &SettingsForm::updateVolumes);
  updateVolumes();
  connect(&host_.model, &AppModel::hasFullDiskAccessChanged, this, &SettingsForm::scanFootnoteChanged);
  connect(&host_.model.scans(), &ScanLifecycle::progressChanged, this, &SettingsForm::scanFootnoteChanged);
  if (host_.usage != nullptr) {
    connect(host_.usage, &Usage::allowedChanged, this, &SettingsForm::sharesUsageChanged);
  }
}

QStringList SettingsForm::scopes() const {
  return titles(scopeChoices);
}

QStringList SettingsForm::presences() const {
  return titles(presenceChoices);
}

QString SettingsForm::warningFootnote() {
  return ShownText::plain(
      i18n("Orange in the status area below this level, red at half. You also get a notification."));
}

QStringList SettingsForm::itemColours() const {
  return titles(itemColourChoices);
}

QString SettingsForm::scanFootnote() const {
  return ShownText::plain(
      SettingsText::scanFootnote(host_.model.hasFullDiskAccess(), host_.model.scans().whyFull()));
}

QString SettingsForm::generalFootnote() const {
  QStringList lines;
  if (host_.desktop.statusItem.opensMenuOnClick()) {
    lines << ShownText::plain(
        i18n("In GNOME's top bar, a click opens the item's menu and a double click opens the panel."));
  }
  if (host_.usage != nullptr) {
    lines << ShownText::plain(
        i18n("Once a day, Spacemint tells us it's in use, with its version and the version "
             "of your system. Nothing about you or your files."));
  }
  return lines.join(u'\n');
}

void SettingsForm::chooseThreshold(int index) {
  const auto choices = thresholdChoices();
  if (const auto* choice = at(choices, index)) prefs().setWarningThresholdGB(choice->value);
}

void SettingsForm::chooseInterval(int index) {
  const auto choices = intervalChoices();
  if (const auto* choice = at(choices, index)) prefs().setScanIntervalHours(choice->value);
}

void SettingsForm::chooseScope(int index) {
  prefs().setScope(index == static_cast<int>(ScanScope::disk) ? ScanScope::disk : ScanScope::home);
}

void SettingsForm::choosePresence(int index) {
  prefs().setPresence(index == static_cast<int>(AppPresence::dock) ? AppPresence::dock
                                                                   : AppPresence::menuBar);
}

void SettingsForm::updateVolumes() {
  QStringList titles;
  std::vector<std::string> mountPoints;
  for (const VolumeReading& reading : host_.model.volume().volumes()) {
    if (reading.volume.holdsHome || !mayWarnAbout(reading)) continue;
    const std::string& mountPoint = reading.volume.mountPoint();
    titles << ShownText::plain(
        i18n("Also watch {volume} ({path})",
             {{"volume", isolatedName(reading.volume.name)}, {"path", isolatedPath(mountPoint)}}));
    mountPoints.push_back(mountPoint);
  }
  if (titles == watchTitles_ && mountPoints == mountPoints_) return;
  watchTitles_ = std::move(titles);
  mountPoints_ = std::move(mountPoints);
  Q_EMIT changed();
  Q_EMIT volumesChanged();
}

QList<bool> SettingsForm::watched() const {
  QList<bool> result;
  for (const std::string& mountPoint : mountPoints_) {
    result << (std::ranges::count(prefs().unwatchedVolumes(), mountPoint) == 0);
  }
  return result;
}

void SettingsForm::setWatched(int index, bool isWatched) {
  if (index < 0 || index >= static_cast<int>(mountPoints_.size())) return;
  const std::string& mountPoint = mountPoints_[static_cast<std::size_t>(index)];
  auto unwatched = prefs().unwatchedVolumes();
  std::erase(unwatched, mountPoint);
  if (!isWatched) unwatched.push_back(mountPoint);
  prefs().setUnwatchedVolumes(std::move(unwatched));
}

void SettingsForm::chooseItemColour(int index) {
  for (const ItemColour colour : {ItemColour::automatic, ItemColour::light, ItemColour::dark}) {
    if (index == static_cast<int>(colour)) prefs().setItemColour(colour);
  }
}

QStringList SettingsForm::excludes() const {
  QStringList patterns;
  for (const std::string& pattern : prefs().excludes())
    patterns << ShownText::plain(isolatedPath(Paths::display(pattern, host_.home)));
  return patterns;
}

bool SettingsForm::addExclude(const QString& pattern) {
  const std::string text = pattern.trimmed().toStdString();
  const auto compiled = Excludes::compile({text}, host_.home);
  excludeError_ =
      compiled ? QString{} : ShownText::plain(i18n("{text}.", {{"text", compiled.error().message}}));
  Q_EMIT excludeErrorChanged();
  if (!compiled) return false;
  std::vector<std::string> patterns = prefs().excludes();
  if (std::ranges::count(patterns, text) == 0) patterns.push_back(text);
  prefs().setExcludes(std::move(patterns));
  return true;
}

void SettingsForm::removeExclude(int index) {
  std::vector<std::string> patterns = prefs().excludes();
  if (index < 0 || index >= static_cast<int>(patterns.size())) return;
  patterns.erase(patterns.begin() + index);
  prefs().setExcludes(std::move(patterns));
}

QString SettingsForm::removeExcludeHelp(const QString& pattern) const {
  return ShownText::plain(i18n("Scan {pattern} again", {{"pattern", pattern.toStdString()}}));
}

void SettingsForm::setLaunchesAtLogin(bool launches) {
  if (launches == launchesAtLogin()) return;
  loginError_.clear();
  if (host_.loginItem != nullptr) {
    const auto done = launches ? host_.loginItem->enable() : host_.loginItem->disable();
    if (!done) loginError_ = ShownText::plain(SettingsText::loginError(done.error(), host_.home));
  }
  Q_EMIT loginChanged();
}

void SettingsForm::setSharesUsage(bool shares) {
  if (host_.usage != nullptr) host_.usage->setAllowed(shares);
}

void SettingsForm::openNotificationSettings() const {
  host_.desktop.opener.openSettings(Opener::SettingsPage::notifications);
}

void SettingsForm::refresh() {
  loginError_.clear();
  Q_EMIT loginChanged();
  Q_EMIT sharesUsageChanged();
}

QStringList SettingsForm::labels(const Choices& choices) {
  QStringList result;
  for (const auto& choice : choices) result << ShownText::plain(choice.label);
  return result;
}

int SettingsForm::indexOf(const Choices& choices, std::int64_t value) {
  const auto place = std::ranges::find(choices, value, &SettingsText::Choice::value);
  return static_cast<int>(place - choices.begin());
}

}  // namespace spacemint
