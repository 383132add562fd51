#pragma once

#include "Spacemint/model/Cleanups.h"
#include "Spacemint/model/CurrentFindings.h"
#include "Spacemint/model/ScanLifecycle.h"
#include "Spacemint/model/SpaceWarnings.h"

#include <QObject>

#include <array>
#include <functional>
#include <memory>

namespace spacemint {

/// The pages of the main panel.
enum class Tab : std::uint8_t { overview, folders, files, developer };

inline constexpr std::array<Tab, 4> allTabs{Tab::overview, Tab::folders, Tab::files, Tab::developer};

/// What a tab is called.
std::string_view titleOf(Tab tab);

/// What the model stands on besides the desktop. What is given by reference outlives the model.
struct ModelHost {
  DefaultsStore& defaults;
  SnapshotStore store;
  EventJournal& journal;
  ToolRuns tools;
  std::string home;
  /// The folders of the user's own files, beside those that every desktop has.
  std::vector<std::string> personal;
  /// Where programs keep their data.
  std::string data;
  Environment environment;
  /// Root of a scan of the whole disk.
  std::string disk;
  std::string locale;
  std::string timeZone;
  /// Whether this is the application, which may notify, and no program that tries it out.
  bool hasBundleIdentifier = false;
  /// Whether all of the user's files can be seen.
  std::function<bool()> hasFullDiskAccess;
};

/// The application without its windows: the one object that the interface watches and asks. Main thread only.
class AppModel : public QObject {
  Q_OBJECT
 public:
  /// After a start with an old scan, the first one waits until the login is over.
  static constexpr std::chrono::seconds launchScanDelay{180};

  AppModel(ModelHost host, const Desktop& desktop);
  ~AppModel() override;

  Preferences& prefs() { return prefs_; }
  DeveloperTools& dev() { return dev_; }
  const VolumeWatch& volume() const { return volume_; }
  const ScanHistory& history() const { return history_; }
  const Findings& findings() const { return findings_.findings(); }
  const ScanLifecycle& scans() const { return scans_; }
  const SpaceWarnings& warnings() const { return warnings_; }
  Cleanups& cleanups() { return cleanups_; }
  const Messages& messages() const { return messages_; }
  const CurrentFindings& currentFindings() const { return findings_; }
  const DeletionGuard& guard() const { return cleanups_.guard(); }

  SpaceLevel level() const { return warnings_.level(); }
  bool hasFullDiskAccess() const { return hasFullDiskAccess_; }
  Tab tab() const { return tab_; }
  const std::optional<std::string>& folderPath() const { return folderPath_; }
  bool showingSettings() const { return showingSettings_; }
  /// The largest device backup that is old and large enough to point at.
  std::optional<DeviceBackup> oldBackup() const;
  /// Whether the path lies in the user's Trash, so that all that is left is to delete it.
  bool isInTrash(const std::string& path) const;

  // What the application tells.

  void start();
  void preferencesChanged();
  void panelWillShow();

  // What the user does.

  /// The first start.
  void begin();
  void scan() { scans_.scan(); }
  void cancelScan() { scans_.cancel(); }
  void setTab(Tab tab);
  void setFolderPath(std::optional<std::string> path);
  void setShowingSettings(bool isShowing);
  void setBaselineEntry(std::optional<SnapshotStore::Entry> entry);
  void sendTestNotification() { warnings_.sendTestNotification(); }
  void showMessage(std::string text) { messages_.show(std::move(text)); }
  void clearMessage() { messages_.clear(); }
  void performMessageAction();

  /// Asks before it does what is requested.
  void confirm(CleanupRequest request) { cleanups_.ask(std::move(request)); }
  void confirmEmptyTrash();

 Q_SIGNALS:
  /// The volume was read: what shows its figures looks again.
  void statusChanged();
  void hasFullDiskAccessChanged();
  void tabChanged();
  void folderPathChanged();
  void showingSettingsChanged();

 private:
  void launchCheck();
  void refreshTrash();
  CleanupContext cleanupContext() const;
  void probeFullDiskAccess();
  Seconds scanInterval() const;

  ModelHost host_;
  Desktop desktop_;
  Preferences prefs_;
  Messages messages_;
  VolumeWatch volume_;
  ScanHistory history_;
  CurrentFindings findings_;
  ScanLifecycle scans_;
  SpaceWarnings warnings_;
  DeveloperTools dev_;
  Cleanups cleanups_;
  bool hasFullDiskAccess_;
  Tab tab_ = Tab::overview;
  std::optional<std::string> folderPath_;
  bool showingSettings_ = false;
};

}  // namespace spacemint
