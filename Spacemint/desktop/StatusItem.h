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

/// How an item of the status area looks.
struct StatusLook {
  /// The text beside the icon; may be empty.
  std::string title;
  std::string toolTip;
  /// The icon in several sizes, of which the desktop takes the one that fits.
  QList<QImage> icons;
  /// The same with the title painted in, for desktops that show nothing beside an icon.
  QList<QImage> titledIcons;
};

struct StatusMenuEntry {
  /// Empty for a line between entries.
  std::string title;
  std::function<void()> choose;
  /// Whether a mark stands before it; empty for an entry that never has one.
  std::function<bool()> isOn = {};
};

/// The application's item in the desktop's status area. It can be installed where there is no such area: it
/// appears when one does. Main thread only.
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

  /// Unknown until the item was installed and the desktop has answered.
  virtual Area area() const = 0;
  /// Where it was clicked last, in the coordinates of windows; absent while that is not known.
  virtual std::optional<QPoint> position() const = 0;

 Q_SIGNALS:
  void activated();
  void areaChanged();
};

}  // namespace spacemint
