#pragma once

#include <QImage>
#include <QList>
#include <QObject>
#include <QPoint>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// The look of the status item.
struct StatusLook {
  /// The text beside the icon; may be empty.
  std::string title;
  std::string toolTip;
  /// The icon in several sizes. The desktop takes the size that fits.
  QList<QImage> icons;
  /// The same with the title drawn into the icon, for desktops that show no text beside an icon.
  QList<QImage> titledIcons;
};

struct StatusMenuEntry {
  /// Empty for a separator line.
  std::string title;
  std::function<void()> choose;
  /// Whether the entry has a check mark; empty for an entry that is not a switch.
  std::function<bool()> isOn = {};
};

/// The application's item in the desktop's status area. It can be installed before there is a status area,
/// and appears as soon as there is one. Main thread only.
class StatusItem : public QObject {
  Q_OBJECT
 public:
  /// Whether the desktop has a status area.
  enum class Area { unknown, present, absent };

  ~StatusItem() override;

  virtual void install() = 0;
  virtual void remove() = 0;
  virtual bool isInstalled() const = 0;

  virtual void setLook(const StatusLook& look) = 0;
  virtual void setMenu(std::vector<StatusMenuEntry> menu) = 0;

  /// Unknown until the item is installed and the desktop has answered.
  virtual Area area() const = 0;
  /// Whether a click on the item opens its menu, and only a double click activates it. It is so in GNOME.
  virtual bool opensMenuOnClick() const = 0;
  /// The point of the last click on the item, in the coordinates of windows; absent if it is not known.
  virtual std::optional<QPoint> position() const = 0;

 Q_SIGNALS:
  void activated();
  void areaChanged();
};

}  // namespace spacemint
