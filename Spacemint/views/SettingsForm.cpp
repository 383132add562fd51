#include "Spacemint/views/SettingsForm.h"

#include <algorithm>

namespace spacemint {

namespace {

constexpr const char* loginFailure = "Couldn't change this. Make sure Spacemint is in Applications.";

QStringList titles(std::span<const SettingChoice> choices) {
  QStringList result;
  for (const SettingChoice& choice : choices) {
    result << QString::fromUtf8(choice.label.data(), static_cast<qsizetype>(choice.label.size()));
  }
  return result;
}

// Null where a view asks for a choice that is not there.
const SettingsText::Choice* at(const std::vector<SettingsText::Choice>& choices, int index) {
  const auto place = static_cast<std::size_t>(index);
  return index >= 0 && place < choices.size() ? &choices[place] : nullptr;
}

}  // namespace

SettingsForm::SettingsForm(const UiHost& host) : host_(host) {
  subscription_ = prefs().observe(Preferences::followedAtOnce, [this](Setting) { Q_EMIT changed(); });
  connect(&host_.model.warnings(), &SpaceWarnings::notificationsAllowedChanged, this,
          &SettingsForm::notificationsAllowedChanged);
  connect(&host_.model, &AppModel::hasFullDiskAccessChanged, this, &SettingsForm::accessChanged);
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

QString SettingsForm::scanFootnote() const {
  return QString::fromStdString(SettingsText::scanFootnote(host_.model.hasFullDiskAccess()));
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

void SettingsForm::setLaunchesAtLogin(bool launches) {
  if (launches == launchesAtLogin()) return;
  const bool isDone = host_.loginItem != nullptr &&
                      (launches ? host_.loginItem->enable() : host_.loginItem->disable()).has_value();
  loginError_ = isDone ? QString{} : QString::fromUtf8(loginFailure);
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
  for (const auto& choice : choices) result << QString::fromStdString(choice.label);
  return result;
}

int SettingsForm::indexOf(const Choices& choices, std::int64_t value) {
  const auto place = std::ranges::find(choices, value, &SettingsText::Choice::value);
  return static_cast<int>(place - choices.begin());
}

}  // namespace spacemint
