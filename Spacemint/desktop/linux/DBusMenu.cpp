#include "Spacemint/desktop/linux/DBusMenu.h"

#include <QMetaObject>

#include <algorithm>

namespace spacemint {

namespace {

constexpr int root = 0;

// A single underscore would make the next letter the access key of the entry.
QString label(const std::string& title) {
  return QString::fromStdString(title).replace(QLatin1Char('_'), QStringLiteral("__"));
}

}  // namespace

DBusMenu::DBusMenu(QObject* object) : QDBusAbstractAdaptor(object) {}

void DBusMenu::setEntries(std::vector<StatusMenuEntry> entries) {
  entries_ = std::move(entries);
  Q_EMIT LayoutUpdated(++revision_, root);
}

QVariantMap DBusMenu::propertiesOf(int id) const {
  if (id == root) return {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
  const StatusMenuEntry& entry = entries_.at(static_cast<std::size_t>(id) - 1);
  if (entry.title.empty()) return {{QStringLiteral("type"), QStringLiteral("separator")}};
  QVariantMap properties{{QStringLiteral("label"), label(entry.title)}};
  if (entry.isOn) {
    properties[QStringLiteral("toggle-type")] = QStringLiteral("checkmark");
    properties[QStringLiteral("toggle-state")] = entry.isOn() ? 1 : 0;
  }
  return properties;
}

uint DBusMenu::GetLayout(int parentId, int recursionDepth, const QStringList& /*propertyNames*/,
                         MenuNode& layout) const {
  layout.id = parentId;
  if (has(parentId)) layout.properties = propertiesOf(parentId);
  if (parentId != root || recursionDepth == 0) return revision_;
  for (int id = 1; has(id); ++id) {
    const MenuNode child{.id = id, .properties = propertiesOf(id), .children = {}};
    layout.children.append(QDBusVariant{QVariant::fromValue(child)});
  }
  return revision_;
}

MenuPropertiesList DBusMenu::GetGroupProperties(const QList<int>& ids,
                                                const QStringList& /*propertyNames*/) const {
  MenuPropertiesList all;
  const auto add = [&](int id) { all.append({.id = id, .properties = propertiesOf(id)}); };
  for (const int id : ids) {
    if (has(id)) add(id);
  }
  if (ids.isEmpty()) {
    for (int id = root; has(id); ++id) add(id);
  }
  return all;
}

QDBusVariant DBusMenu::GetProperty(int id, const QString& name) const {
  const QVariant value = has(id) ? propertiesOf(id).value(name) : QVariant{};
  return QDBusVariant{value.isValid() ? value : QVariant{QString{}}};
}

void DBusMenu::Event(int id, const QString& event, const QDBusVariant& /*data*/, uint /*time*/) {
  if (event != QStringLiteral("clicked") || id == root || !has(id)) return;
  const auto choose = entries_.at(static_cast<std::size_t>(id) - 1).choose;
  // Later: the host waits for the answer to this call, and gets none if the entry quits the application at
  // once.
  if (choose) QMetaObject::invokeMethod(parent(), choose, Qt::QueuedConnection);
}

QList<int> DBusMenu::EventGroup(const MenuEvents& events) {
  QList<int> unknown;
  for (const MenuEvent& event : events) {
    if (has(event.id)) {
      Event(event.id, event.event, event.data, event.time);
    } else {
      unknown.append(event.id);
    }
  }
  return unknown;
}

// Whether the host must read the layout again. A check mark may have changed: no signal tells that.
bool DBusMenu::AboutToShow(int /*id*/) {
  return std::ranges::any_of(entries_, [](const StatusMenuEntry& entry) { return bool{entry.isOn}; });
}

QList<int> DBusMenu::AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) {
  for (const int id : ids) {
    if (!has(id)) idErrors.append(id);
  }
  return {};
}

}  // namespace spacemint
