#pragma once

#include "Spacemint/desktop/ActivityScheduler.h"
#include "Spacemint/desktop/Appearance.h"
#include "Spacemint/desktop/Clock.h"
#include "Spacemint/desktop/Notifier.h"
#include "Spacemint/desktop/StatusItem.h"
#include "Spacemint/desktop/Tasks.h"
#include "core/base/Bytes.h"
#include "core/base/Error.h"
#include "core/host/TrashCan.h"
#include "core/host/VolumeTable.h"
#include "core/volume/VolumeStatus.h"

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QWindow;

namespace spacemint {

/// The mark on the application's icon in the desktop's dock or task bar. Main thread only. Does nothing where
/// the desktop shows no marks.
class Badge {
 public:
  Badge() = default;
  Badge(const Badge&) = delete;
  Badge& operator=(const Badge&) = delete;
  virtual ~Badge() = default;

  /// `free`: the free space in bytes.
  virtual void show(Bytes free) = 0;
  virtual void clear() = 0;
};

/// The desktop's list of programs that it starts at login. Main thread only.
class LoginItem {
 public:
  LoginItem() = default;
  LoginItem(const LoginItem&) = delete;
  LoginItem& operator=(const LoginItem&) = delete;
  virtual ~LoginItem() = default;

  virtual bool isEnabled() const = 0;
  /// Fails if the program is not installed, or if the entry cannot be written.
  virtual std::expected<void, Error> enable() = 0;
  /// Succeeds also if it is not enabled.
  virtual std::expected<void, Error> disable() = 0;
};

/// The volume of the home folder, whose free space is shown, and the others that are watched. Any thread.
class StartupVolume {
 public:
  StartupVolume() = default;
  StartupVolume(const StartupVolume&) = delete;
  StartupVolume& operator=(const StartupVolume&) = delete;
  virtual ~StartupVolume() = default;

  /// Absent while the volume cannot be read.
  virtual std::optional<VolumeStatus> status() = 0;

  /// Whether `status` may block for long, as on a network file system. Then do not call it on the main
  /// thread.
  virtual bool mayHang() = 0;

  /// All volumes that hold files, the home folder's first. Blocks for up to a second.
  virtual std::vector<VolumeReading> all() = 0;
};

/// Opens files, web pages and settings in other programs of the desktop. Main thread only.
class Opener {
 public:
  /// Pages of the system's settings.
  enum class SettingsPage { fullDiskAccess, notifications };
  using Chosen = std::function<void(const std::string& path)>;

  Opener() = default;
  Opener(const Opener&) = delete;
  Opener& operator=(const Opener&) = delete;
  virtual ~Opener() = default;

  /// Opens a web page or a file ("file:...") in the desktop's program for it. Calls `failed`, later, if no
  /// program opened it; `failed` may be empty.
  virtual void openUrl(const std::string& url, std::function<void()> failed) = 0;
  virtual void openSettings(SettingsPage page) = 0;

  /// Opens the desktop's dialog for choosing a file. Calls `chosen`, later, with the file that the user
  /// chose; `failed` where there is no such dialog; neither if the user chooses none, or when another dialog
  /// is opened.
  virtual void chooseFile(const std::string& title, Chosen chosen, std::function<void()> failed) = 0;

  /// Shows the item in the file manager, selected. Failures are ignored.
  virtual void reveal(const std::string& path) = 0;

  /// Calls `found`, later, with the file manager's name in the user's language; never where the name is
  /// unknown.
  virtual void findFileManager(std::function<void(const std::string& name)> found) = 0;
};

/// Mouse clicks outside of a window of this application. Main thread only.
class OutsideClicks {
 public:
  /// Watches until it is destroyed.
  class Watch {
   public:
    Watch() = default;
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    virtual ~Watch() = default;
  };

  OutsideClicks() = default;
  OutsideClicks(const OutsideClicks&) = delete;
  OutsideClicks& operator=(const OutsideClicks&) = delete;
  virtual ~OutsideClicks() = default;

  /// Calls `clicked` after each click outside of `window`: when a button that was pressed there is released.
  /// Clicks into other programs and on the empty desktop count; turns of the wheel do not. `clicked` may
  /// destroy the watch. Null where the system does not report such clicks.
  virtual std::unique_ptr<Watch> watch(const QWindow& window, std::function<void()> clicked) = 0;
};

/// All that the application needs of its desktop. The objects outlive their users.
struct Desktop {
  Clock& clock;
  Tasks& tasks;
  Notifier& notifier;
  TrashCan& trash;
  Opener& opener;
  ActivityScheduler& scheduler;
  StartupVolume& volume;
  StatusItem& statusItem;
  Badge& badge;
  Appearance& appearance;
  LoginItem& loginItem;
  OutsideClicks& outsideClicks;
};

}  // namespace spacemint
