#pragma once

#include "AppServices/Updates.h"
#include "AppServices/Usage.h"
#include "Spacemint/views/UiHost.h"
#include "core/settings/Settings.h"

#include <QQmlEngine>
#include <QStringList>

#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// The choices and the sentences of the settings page.
namespace SettingsText {

/// A value of a setting, and its label.
struct Choice {
  std::int64_t value;
  std::string label;

  bool operator==(const Choice&) const = default;
};

/// The values that a setting offers, in rising order. A stored value that is not among them is added.
std::vector<Choice> thresholds(std::int64_t stored);
std::vector<Choice> intervals(std::int64_t stored);

/// The footnote of the section about the background scan. `whyFull` as in `ScanLifecycle`; the last scan has
/// a line of its own.
std::string scanFootnote(bool hasFullDiskAccess, const std::optional<std::string>& whyFull);
/// Why the switch "Open at login" could not be changed.
std::string loginError(const Error& error, const std::string& home);

}  // namespace SettingsText

/// The settings page: it shows the stored settings and changes them. Main thread only.
class SettingsForm : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(QStringList thresholds READ thresholds NOTIFY changed)
  Q_PROPERTY(int threshold READ threshold NOTIFY changed)
  Q_PROPERTY(QStringList intervals READ intervals NOTIFY changed)
  Q_PROPERTY(int interval READ interval NOTIFY changed)
  Q_PROPERTY(QStringList scopes READ scopes CONSTANT)
  Q_PROPERTY(int scope READ scope NOTIFY changed)
  Q_PROPERTY(QStringList presences READ presences CONSTANT)
  Q_PROPERTY(int presence READ presence NOTIFY changed)
  Q_PROPERTY(QStringList itemColours READ itemColours CONSTANT)
  Q_PROPERTY(int itemColour READ itemColour NOTIFY changed)
  Q_PROPERTY(bool showsFreeSpace READ showsFreeSpace NOTIFY changed)
  /// The titles of the switches of the volumes besides the home folder's that the user can be warned about.
  Q_PROPERTY(QStringList watchTitles READ watchTitles NOTIFY volumesChanged)
  /// Whether the user is warned about each of these volumes.
  Q_PROPERTY(QList<bool> watched READ watched NOTIFY changed)
  Q_PROPERTY(bool notificationsAllowed READ notificationsAllowed NOTIFY notificationsAllowedChanged)
  Q_PROPERTY(QString scanFootnote READ scanFootnote NOTIFY scanFootnoteChanged)
  /// The patterns of what scans leave out.
  Q_PROPERTY(QStringList excludes READ excludes NOTIFY changed)
  /// Why the pattern that was added last is refused; empty if it is not.
  Q_PROPERTY(QString excludeError READ excludeError NOTIFY excludeErrorChanged)
  Q_PROPERTY(bool launchesAtLogin READ launchesAtLogin NOTIFY loginChanged)
  /// Why the start at login could not be changed; empty if it could.
  Q_PROPERTY(QString loginError READ loginError NOTIFY loginChanged)
  /// Null in a product that reports no usage, or that has no updates.
  Q_PROPERTY(spacemint::Usage* usage READ usage CONSTANT)
  Q_PROPERTY(spacemint::Updates* updates READ updates CONSTANT)
  Q_PROPERTY(QString warningFootnote READ warningFootnote CONSTANT)
  /// How the status item is used, where it is not by one click, and what a usage report contains.
  Q_PROPERTY(QString generalFootnote READ generalFootnote CONSTANT)
  Q_PROPERTY(bool sharesUsage READ sharesUsage NOTIFY sharesUsageChanged)
 public:
  explicit SettingsForm(const UiHost& host);

  QStringList thresholds() const { return labels(thresholdChoices()); }
  int threshold() const { return indexOf(thresholdChoices(), prefs().warningThresholdGB()); }
  QStringList intervals() const { return labels(intervalChoices()); }
  int interval() const { return indexOf(intervalChoices(), prefs().scanIntervalHours()); }
  QStringList scopes() const;
  int scope() const { return static_cast<int>(prefs().scope()); }
  QStringList presences() const;
  int presence() const { return static_cast<int>(prefs().presence()); }
  QStringList itemColours() const;
  int itemColour() const { return static_cast<int>(prefs().itemColour()); }
  bool showsFreeSpace() const { return prefs().showFreeSpaceInMenuBar(); }
  const QStringList& watchTitles() const { return watchTitles_; }
  QList<bool> watched() const;
  bool notificationsAllowed() const { return host_.model.warnings().notificationsAllowed(); }
  static QString warningFootnote();
  QString scanFootnote() const;
  QStringList excludes() const;
  const QString& excludeError() const { return excludeError_; }
  QString generalFootnote() const;
  bool launchesAtLogin() const { return host_.loginItem != nullptr && host_.loginItem->isEnabled(); }
  const QString& loginError() const { return loginError_; }
  Usage* usage() const { return host_.usage; }
  Updates* updates() const { return host_.updates; }
  bool sharesUsage() const { return host_.usage != nullptr && host_.usage->isShared(); }

  Q_INVOKABLE void chooseThreshold(int index);
  Q_INVOKABLE void chooseInterval(int index);
  Q_INVOKABLE void chooseScope(int index);
  Q_INVOKABLE void choosePresence(int index);
  Q_INVOKABLE void chooseItemColour(int index);
  Q_INVOKABLE void setShowsFreeSpace(bool isShown) { prefs().setShowFreeSpaceInMenuBar(isShown); }
  Q_INVOKABLE void setWatched(int index, bool isWatched);
  /// Adds a pattern; false if it is refused.
  Q_INVOKABLE bool addExclude(const QString& pattern);
  Q_INVOKABLE void removeExclude(int index);
  /// The help of the button that removes a pattern.
  Q_INVOKABLE QString removeExcludeHelp(const QString& pattern) const;
  Q_INVOKABLE void setLaunchesAtLogin(bool launches);
  Q_INVOKABLE void setSharesUsage(bool shares);
  Q_INVOKABLE void sendTestNotification() { host_.model.warnings().sendTestNotification(); }
  Q_INVOKABLE void openNotificationSettings() const;
  /// Call when the page is about to be shown: reads again what other programs may have changed.
  Q_INVOKABLE void refresh();

 Q_SIGNALS:
  void changed();
  void volumesChanged();
  void notificationsAllowedChanged();
  void scanFootnoteChanged();
  void excludeErrorChanged();
  void loginChanged();
  void sharesUsageChanged();

 private:
  using Choices = std::vector<SettingsText::Choice>;

  void updateVolumes();
  Preferences& prefs() const { return host_.model.prefs(); }
  Choices thresholdChoices() const { return SettingsText::thresholds(prefs().warningThresholdGB()); }
  Choices intervalChoices() const { return SettingsText::intervals(prefs().scanIntervalHours()); }
  static QStringList labels(const Choices& choices);
  static int indexOf(const Choices& choices, std::int64_t value);

  const UiHost& host_;
  Preferences::Subscription subscription_;
  QStringList watchTitles_;
  std::vector<std::string> mountPoints_;
  QString loginError_;
  QString excludeError_;
};

}  // namespace spacemint
