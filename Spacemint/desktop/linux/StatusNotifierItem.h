#pragma once

#include "Spacemint/desktop/StatusItem.h"
#include "Spacemint/desktop/linux/DBusMenu.h"
#include "Spacemint/desktop/linux/StatusNotifierAdaptor.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QTemporaryDir>

namespace spacemint {

/// The status item by the D-Bus interface org.kde.StatusNotifierItem. Every host that registers with the
/// watcher of that protocol shows it. Main thread only; never waits for the bus.
class StatusNotifierItem final : public StatusItem {
  Q_OBJECT
 public:
  /// `desktop`: the value of XDG_CURRENT_DESKTOP. It decides how the host is spoken to.
  StatusNotifierItem(const QDBusConnection& bus, const QString& desktop);
  ~StatusNotifierItem() override;

  void install() override;
  void remove() override;
  bool isInstalled() const override { return isInstalled_; }
  void setLook(const StatusLook& look) override;
  void setMenu(std::vector<StatusMenuEntry> menu) override { menu_->setEntries(std::move(menu)); }
  Area area() const override { return area_; }
  bool opensMenuOnClick() const override { return isGnome_; }
  std::optional<QPoint> position() const override { return position_; }

 private Q_SLOTS:
  void askForHost();

 private:
  void meetWatcher();
  void registerItem();
  void setArea(Area area);
  void clicked(QPoint pixel);
  void publish();
  QString writeIcon();

  QDBusConnection bus_;
  QDBusServiceWatcher watcher_;
  QString service_;
  QObject itemObject_;
  QObject menuObject_;
  StatusNotifierAdaptor* item_;
  DBusMenu* menu_;
  StatusLook look_;
  bool isGnome_;
  /// The host shows the title beside the icon.
  bool showsTitle_;
  /// The host reads icons from files only. They are in `files_`, a folder that is made when it is first
  /// needed.
  bool wantsFiles_ = false;
  std::unique_ptr<QTemporaryDir> files_;
  int lastFile_ = 0;
  bool isInstalled_ = false;
  Area area_ = Area::unknown;
  std::optional<QPoint> position_;
};

}  // namespace spacemint
