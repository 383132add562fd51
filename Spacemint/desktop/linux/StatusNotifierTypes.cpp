#include "Spacemint/desktop/linux/StatusNotifierTypes.h"

#include <QDBusMetaType>

namespace spacemint {

namespace {

template <class... Fields>
QDBusArgument& writeFields(QDBusArgument& out, const Fields&... fields) {
  out.beginStructure();
  (out << ... << fields);
  out.endStructure();
  return out;
}

template <class... Fields>
const QDBusArgument& readFields(const QDBusArgument& in, Fields&... fields) {
  in.beginStructure();
  (in >> ... >> fields);
  in.endStructure();
  return in;  // NOLINT(bugprone-return-const-ref-from-parameter): the form that QtDBus prescribes
}

// `name` is how the slots and signals of our adaptors write the type. QtDBus looks their arguments up by that
// name, finds an alias such as MenuEvents only if it was registered, and leaves out every slot and signal
// with an argument that it does not find.
template <class Type>
void registerType(const char* name) {
  qRegisterMetaType<Type>(name);
  qDBusRegisterMetaType<Type>();
}

}  // namespace

QDBusArgument& operator<<(QDBusArgument& out, const StatusPixmap& pixmap) {
  return writeFields(out, pixmap.width, pixmap.height, pixmap.pixels);
}
const QDBusArgument& operator>>(const QDBusArgument& in, StatusPixmap& pixmap) {
  return readFields(in, pixmap.width, pixmap.height, pixmap.pixels);
}

QDBusArgument& operator<<(QDBusArgument& out, const StatusToolTip& toolTip) {
  return writeFields(out, toolTip.iconName, toolTip.icons, toolTip.title, toolTip.text);
}
const QDBusArgument& operator>>(const QDBusArgument& in, StatusToolTip& toolTip) {
  return readFields(in, toolTip.iconName, toolTip.icons, toolTip.title, toolTip.text);
}

QDBusArgument& operator<<(QDBusArgument& out, const MenuNode& node) {
  return writeFields(out, node.id, node.properties, node.children);
}
const QDBusArgument& operator>>(const QDBusArgument& in, MenuNode& node) {
  return readFields(in, node.id, node.properties, node.children);
}

QDBusArgument& operator<<(QDBusArgument& out, const MenuProperties& properties) {
  return writeFields(out, properties.id, properties.properties);
}
const QDBusArgument& operator>>(const QDBusArgument& in, MenuProperties& properties) {
  return readFields(in, properties.id, properties.properties);
}

QDBusArgument& operator<<(QDBusArgument& out, const MenuRemovedProperties& removed) {
  return writeFields(out, removed.id, removed.names);
}
const QDBusArgument& operator>>(const QDBusArgument& in, MenuRemovedProperties& removed) {
  return readFields(in, removed.id, removed.names);
}

QDBusArgument& operator<<(QDBusArgument& out, const MenuEvent& event) {
  return writeFields(out, event.id, event.event, event.data, event.time);
}
const QDBusArgument& operator>>(const QDBusArgument& in, MenuEvent& event) {
  return readFields(in, event.id, event.event, event.data, event.time);
}

void registerStatusNotifierTypes() {
  registerType<StatusPixmap>("spacemint::StatusPixmap");
  registerType<StatusPixmaps>("spacemint::StatusPixmaps");
  registerType<StatusToolTip>("spacemint::StatusToolTip");
  qDBusRegisterMetaType<QList<QDBusVariant>>();
  registerType<MenuNode>("spacemint::MenuNode");
  registerType<MenuProperties>("spacemint::MenuProperties");
  registerType<MenuPropertiesList>("spacemint::MenuPropertiesList");
  registerType<MenuRemovedProperties>("spacemint::MenuRemovedProperties");
  registerType<MenuRemovedPropertiesList>("spacemint::MenuRemovedPropertiesList");
  registerType<MenuEvent>("spacemint::MenuEvent");
  registerType<MenuEvents>("spacemint::MenuEvents");
}

}  // namespace spacemint
