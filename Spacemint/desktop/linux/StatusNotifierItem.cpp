#include "Spacemint/desktop/linux/StatusNotifierItem.h"

#include "Spacemint/desktop/linux/DBusCall.h"
#include "Spacemint/desktop/linux/Wayland.h"
#include "core/base/Log.h"

#include <QCoreApplication>
#include <QCursor>
#include <QFile>
#include <QGuiApplication>
#include <QScreen>
#include <QtEndian>

#include <utility>

namespace spacemint {

namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
const QString itemPath = QStringLiteral("/StatusNotifierItem");
const QString menuPath = QStringLiteral("/StatusNotifierItem/Menu");
// The Ayatana host owns this name beside the name of the watcher. It shows the title beside the icon, and
// reads icons from files only.
const QString ayatanaName = QStringLiteral("org.ayatana.indicator.application");

QDBusMessage nameHasOwner(const QString& name) {
  return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
                                        QStringLiteral("org.freedesktop.DBus"),
                                        QStringLiteral("NameHasOwner"))
         << name;
}

bool isYes(const QDBusMessage& reply) {
  return reply.type() == QDBusMessage::ReplyMessage && reply.arguments().value(0).toBool();
}

StatusPixmap pixmapOf(const QImage& image) {
  const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
  StatusPixmap pixmap{.width = argb.width(), .height = argb.height(), .pixels = {}};
  pixmap.pixels.reserve(argb.sizeInBytes());
  for (int y = 0; y < argb.height(); ++y) {
    const auto* row = reinterpret_cast<const QRgb*>(argb.constScanLine(y));
    for (int x = 0; x < argb.width(); ++x) {
      const auto pixel = qToBigEndian<quint32>(row[x]);
      pixmap.pixels.append(reinterpret_cast<const char*>(&pixel), sizeof pixel);
    }
  }
  return pixmap;
}

StatusPixmaps pixmapsOf(const QList<QImage>& images) {
  StatusPixmaps pixmaps;
  for (const QImage& image : images) pixmaps.append(pixmapOf(image));
  return pixmaps;
}

// The place of a pixel of the desktop in the coordinates of windows; absent where the pixel is on no screen.
// Both count a screen from the same top left corner. Hosts that do not know the place tell 0, 0. On Wayland
// hosts count as windows do.
std::optional<QPoint> pointOfPixel(QPoint pixel) {
  if (pixel.isNull()) return std::nullopt;
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect place = screen->geometry();
    const qreal scale = isOnWayland() ? 1 : screen->devicePixelRatio();
    if (QRect{place.topLeft(), place.size() * scale}.contains(pixel)) {
      return place.topLeft() + (pixel - place.topLeft()) / scale;
    }
  }
  return std::nullopt;
}

// The pointer where it is on a panel of the desktop. Right after a click it is on the item, and some hosts
// tell another place (MATE counts from the item's own corner). X11 only: elsewhere the pointer is not known.
std::optional<QPoint> pointerOnAPanel() {
  if (QGuiApplication::platformName() != QStringLiteral("xcb")) return std::nullopt;
  const QPoint pointer = QCursor::pos();
  const QScreen* screen = QGuiApplication::screenAt(pointer);
  if (screen == nullptr || screen->availableGeometry().contains(pointer)) return std::nullopt;
  return pointer;
}

}  // namespace

StatusNotifierItem::StatusNotifierItem(const QDBusConnection& bus, const QString& desktop)
    : bus_(bus),
      watcher_(watcherName, bus, QDBusServiceWatcher::WatchForOwnerChange),
      service_(QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid())),
      item_(new StatusNotifierAdaptor(&itemObject_, QDBusObjectPath{menuPath},
                                      [this](QPoint pixel) { clicked(pixel); })),
      menu_(new DBusMenu(&menuObject_)),
      isGnome_(desktop.contains(QStringLiteral("GNOME"))),
      showsTitle_(isGnome_ || desktop.contains(QStringLiteral("MATE"))) {
  registerStatusNotifierTypes();
}

StatusNotifierItem::~StatusNotifierItem() {
  remove();
}

void StatusNotifierItem::install() {
  if (std::exchange(isInstalled_, true)) return;
  bus_.registerObject(itemPath, &itemObject_, QDBusConnection::ExportAdaptors);
  bus_.registerObject(menuPath, &menuObject_, QDBusConnection::ExportAdaptors);
  bus_.registerService(service_);
  connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this, &StatusNotifierItem::meetWatcher,
          Qt::UniqueConnection);
  for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
    bus_.connect(watcherName, watcherPath, watcherName, QLatin1String(signal), this, SLOT(askForHost()));
  }
  meetWatcher();
}

// Hosts remove the item when its name leaves the bus.
void StatusNotifierItem::remove() {
  if (!std::exchange(isInstalled_, false)) return;
  bus_.unregisterService(service_);
  bus_.unregisterObject(menuPath);
  bus_.unregisterObject(itemPath);
}

void StatusNotifierItem::meetWatcher() {
  callAsync(bus_, nameHasOwner(ayatanaName), this, [this](const QDBusMessage& reply) {
    wantsFiles_ = isYes(reply);
    publish();
    registerItem();
  });
}

void StatusNotifierItem::registerItem() {
  if (!isInstalled_) return;
  QDBusMessage call = QDBusMessage::createMethodCall(watcherName, watcherPath, watcherName,
                                                     QStringLiteral("RegisterStatusNotifierItem"));
  callAsync(bus_, call << service_, this, [this](const QDBusMessage&) { askForHost(); });
}

void StatusNotifierItem::askForHost() {
  QDBusMessage call = QDBusMessage::createMethodCall(
      watcherName, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
  call << watcherName << QStringLiteral("IsStatusNotifierHostRegistered");
  callAsync(bus_, call, this, [this](const QDBusMessage& reply) {
    const bool isThere = reply.type() == QDBusMessage::ReplyMessage &&
                         reply.arguments().value(0).value<QDBusVariant>().variant().toBool();
    setArea(isThere ? Area::present : Area::absent);
  });
}

void StatusNotifierItem::setArea(Area area) {
  if (std::exchange(area_, area) == area) return;
  log(LogLevel::info,
      area == Area::present ? "the desktop has a status area" : "the desktop has no status area");
  Q_EMIT areaChanged();
}

void StatusNotifierItem::clicked(QPoint pixel) {
  if (const auto point = pointerOnAPanel()) {
    position_ = point;
  } else if (const auto told = pointOfPixel(pixel)) {
    position_ = told;
  }
  Q_EMIT activated();
}

void StatusNotifierItem::setLook(const StatusLook& look) {
  look_ = look;
  publish();
}

void StatusNotifierItem::publish() {
  const bool isTitleBeside = showsTitle_ || wantsFiles_;
  const QString name = QStringLiteral("Spacemint");
  const QString text = QString::fromStdString(look_.toolTip);
  item_->setContent({.title = text.isEmpty() ? name : name + QStringLiteral(": ") + text,
                     .toolTip = {.iconName = {}, .icons = {}, .title = name, .text = text},
                     .iconName = wantsFiles_ ? writeIcon() : QString{},
                     .icons = pixmapsOf(isTitleBeside ? look_.icons : look_.titledIcons),
                     .label = QString::fromStdString(look_.title)});
}

// Each icon gets a new file name: hosts cache icons by name.
QString StatusNotifierItem::writeIcon() {
  if (look_.icons.isEmpty()) return {};
  if (!files_) files_ = std::make_unique<QTemporaryDir>();
  const auto path = [this] { return files_->filePath(QStringLiteral("item-%1.png").arg(lastFile_)); };
  QFile::remove(path());
  ++lastFile_;
  return look_.icons.last().save(path(), "PNG") ? path() : QString{};
}

}  // namespace spacemint
