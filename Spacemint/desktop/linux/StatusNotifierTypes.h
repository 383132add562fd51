#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QString>
#include <QVariantMap>

/// The D-Bus types of the interfaces org.kde.StatusNotifierItem and com.canonical.dbusmenu. The comment at
/// each type is its D-Bus signature.

namespace spacemint {

/// (iiay): an image, row by row from the top; a pixel is the bytes alpha, red, green, blue.
struct StatusPixmap {
  int width = 0;
  int height = 0;
  QByteArray pixels;
};
using StatusPixmaps = QList<StatusPixmap>;

/// (sa(iiay)ss)
struct StatusToolTip {
  QString iconName;
  StatusPixmaps icons;
  QString title;
  QString text;
};

/// (ia{sv}av): a menu entry and its children; each child is a variant that holds another MenuNode.
struct MenuNode {
  int id = 0;
  QVariantMap properties;
  QList<QDBusVariant> children;
};

/// (ia{sv})
struct MenuProperties {
  int id = 0;
  QVariantMap properties;
};
using MenuPropertiesList = QList<MenuProperties>;

/// (ias)
struct MenuRemovedProperties {
  int id = 0;
  QStringList names;
};
using MenuRemovedPropertiesList = QList<MenuRemovedProperties>;

/// (isvu)
struct MenuEvent {
  int id = 0;
  QString event;
  QDBusVariant data;
  uint time = 0;
};
using MenuEvents = QList<MenuEvent>;

QDBusArgument& operator<<(QDBusArgument& out, const StatusPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& in, StatusPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& out, const StatusToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& in, StatusToolTip& toolTip);
QDBusArgument& operator<<(QDBusArgument& out, const MenuNode& node);
const QDBusArgument& operator>>(const QDBusArgument& in, MenuNode& node);
QDBusArgument& operator<<(QDBusArgument& out, const MenuProperties& properties);
const QDBusArgument& operator>>(const QDBusArgument& in, MenuProperties& properties);
QDBusArgument& operator<<(QDBusArgument& out, const MenuRemovedProperties& removed);
const QDBusArgument& operator>>(const QDBusArgument& in, MenuRemovedProperties& removed);
QDBusArgument& operator<<(QDBusArgument& out, const MenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& in, MenuEvent& event);

/// Makes the types known to QtDBus. Call it before an object that uses them is registered with a bus.
void registerStatusNotifierTypes();

}  // namespace spacemint

Q_DECLARE_METATYPE(spacemint::StatusPixmap)
Q_DECLARE_METATYPE(spacemint::StatusToolTip)
Q_DECLARE_METATYPE(spacemint::MenuNode)
Q_DECLARE_METATYPE(spacemint::MenuProperties)
Q_DECLARE_METATYPE(spacemint::MenuRemovedProperties)
Q_DECLARE_METATYPE(spacemint::MenuEvent)
