#pragma once

#include "Spacemint/model/AppContext.h"
#include "Spacemint/model/Cleanups.h"
#include "Spacemint/model/CurrentAccount.h"
#include "Spacemint/model/Findings.h"
#include "Spacemint/model/GrowthNow.h"
#include "Spacemint/model/QuickLook.h"
#include "Spacemint/model/ScanLifecycle.h"
#include "Spacemint/model/ShownScan.h"
#include "Spacemint/model/SpaceWarnings.h"
#include "core/history/FreeSpaceRecord.h"

#include <QObject>

#include <array>
#include <functional>
#include <memory>
#include <span>

namespace spacemint {

/// The pages of the main panel.
enum class Tab : std::uint8_t { overview, folders, files, developer };

inline constexpr std::array<Tab, 4> allTabs{Tab::overview, Tab::folders, Tab::files, Tab::developer};

/// What a tab is called.
std::string titleOf(Tab tab);

/// The application without its windows: owns all parts of the model. Main thread only.
class AppModel : public QObject {
  Q_OBJECT
 public:
  /// So long after the start of the program, when the login is over, a scan begins if the last one is old;
  /// otherwise the folder is recorded again.
  static constexpr std::chrono::seconds launchScanDelay{180};

  AppModel(AppContext context, const Desktop& desktop);
  ~AppModel() override;

  // The parts of the model. The interface asks and watches each of them directly.

  Preferences& prefs() { return prefs_; }
  Messages& messages() { return messages_; }
  const VolumeWatch& volume() const { return volume_; }
  /// The free space of the volume with the home folder, hour by hour.
  const FreeSpaceRecord& freeSpace() const { return freeSpace_; }
  ScanHistory& history() { return history_; }
  const ScanHistory& history() const { return history_; }
  const CurrentFindings& currentFindings() const { return findings_; }
  const Findings& findings() const { return findings_.findings(); }
  ShownScan& shown() { return shown_; }
  const ShownScan& shown() const { return shown_; }
  CurrentAccount& account() { return account_; }
  ScanLifecycle& scans() { return scans_; }
  GrowthNow& growing() { return growing_; }
  SpaceWarnings& warnings() { return warnings_; }
  DeveloperTools& dev() { return dev_; }
  Cleanups& cleanups() { return cleanups_; }

  bool hasFullDiskAccess() const { return hasFullDiskAccess_; }
  Tab tab() const { return tab_; }
  /// The tabs of the scan that is shown: all, or those that need nothing of this computer.
  std::span<const Tab> tabs() const;
  const std::optional<std::string>& folderPath() const { return folderPath_; }
  /// What the tab of files looks for (`parseSearch`); empty for the largest files.
  const std::string& fileSearch() const { return fileSearch_; }
  bool showingSettings() const { return showingSettings_; }
  /// The largest device backup that is old and large enough for a card.
  std::optional<DeviceBackup> oldBackup() const;
  /// Whether the path lies in the user's Trash, so that it can only be deleted.
  bool isInTrash(const std::string& path) const;

  // Calls of the application's shell.

  /// Reads the volume and the stored scans, and schedules scans. Call it once.
  void start();
  void preferencesChanged();
  void panelWillShow();

  // Actions of the user.

  /// The first start.
  void begin();
  /// Shows the scan of this computer again if the one that is shown has no such tab.
  void setTab(Tab tab);
  /// Shows what the last warning was about: the folder that it named if the scan has it, or else the
  /// overview.
  void followWarning();
  void setFolderPath(std::optional<std::string> path);
  /// Shows a folder in the tab of folders. Measures it first if it is not in the scan, and says so if the
  /// scan is of another folder. Waits for the stored scan.
  void openFolder(const std::string& path);
  /// Shows the scan in a file (`ScanFile`), or a folder as `openFolder` does.
  void open(const std::string& path);
  void setFileSearch(std::string words);
  void setShowingSettings(bool isShowing);
  /// Leaves an item out of this scan and of all later ones. The message offers to take that back.
  void leaveOut(const std::string& path);
  /// Asks whether to empty the Trash.
  void confirmEmptyTrash();

 Q_SIGNALS:
  /// The volume was read. Comes after every reading, also where the figures are the same.
  void statusChanged();
  void hasFullDiskAccessChanged();
  void tabChanged();
  void folderPathChanged();
  void fileSearchChanged();
  void showingSettingsChanged();

 private:
  void launchCheck();
  void showMeasured(const std::string& path);
  void recordFreeSpace();
  void refreshTrash();
  CleanupContext cleanupContext() const;
  void probeFullDiskAccess();
  void warnIfDue();
  Seconds scanInterval() const;

  AppContext context_;
  Desktop desktop_;
  Preferences prefs_;
  Messages messages_;
  VolumeWatch volume_;
  FreeSpaceRecord freeSpace_;
  /// The hour of the last reading that was given to `freeSpace_`.
  std::optional<std::chrono::sys_time<std::chrono::hours>> recordedHour_;
  ScanHistory history_;
  CurrentFindings findings_;
  ShownScan shown_;
  CurrentAccount account_;
  ScanLifecycle scans_;
  GrowthNow growing_;
  SpaceWarnings warnings_;
  QuickLook looks_;
  DeveloperTools dev_;
  Cleanups cleanups_;
  bool hasFullDiskAccess_;
  std::unique_ptr<ActivityScheduler::Scheduled> afterLaunch_;
  Tab tab_ = Tab::overview;
  std::optional<std::string> folderPath_;
  std::string fileSearch_;
  /// To be opened when the stored scan is read.
  std::optional<std::string> folderToOpen_;
  bool showingSettings_ = false;
};

}  // namespace spacemint
