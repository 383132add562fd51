#pragma once

#include "Spacemint/desktop/StatusItem.h"
#include "Spacemint/desktop/linux/StatusNotifierTypes.h"

#include <QDBusAbstractAdaptor>

namespace spacemint {

/// A menu without submenus by the D-Bus interface com.canonical.dbusmenu. The host of the status item draws
/// it. The id of an entry is its position, counted from 1; 0 is the menu itself. Main thread only.
class DBusMenu final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
  Q_PROPERTY(uint Version READ version CONSTANT)
  Q_PROPERTY(QString TextDirection READ textDirection CONSTANT)
  Q_PROPERTY(QString Status READ status CONSTANT)
  Q_PROPERTY(QStringList IconThemePath READ iconThemePath CONSTANT)
 public:
  /// Adds the interface to `object`. The caller registers the object with a bus.
  explicit DBusMenu(QObject* object);

  void setEntries(std::vector<StatusMenuEntry> entries);

  uint version() const { return 3; }
  QString textDirection() const { return QStringLiteral("ltr"); }
  QString status() const { return QStringLiteral("normal"); }
  QStringList iconThemePath() const { return {}; }

 public Q_SLOTS:
  uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                 spacemint::MenuNode& layout) const;
  spacemint::MenuPropertiesList GetGroupProperties(const QList<int>& ids,
                                                   const QStringList& propertyNames) const;
  QDBusVariant GetProperty(int id, const QString& name) const;
  void Event(int id, const QString& event, const QDBusVariant& data, uint time);
  /// Several events at once. Returns the ids of entries that do not exist.
  QList<int> EventGroup(const spacemint::MenuEvents& events);
  bool AboutToShow(int id);
  QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors);

 Q_SIGNALS:
  void ItemsPropertiesUpdated(const spacemint::MenuPropertiesList& updated,
                              const spacemint::MenuRemovedPropertiesList& removed);
  void LayoutUpdated(uint revision, int parent);
  void ItemActivationRequested(int id, uint time);

 private:
  bool has(int id) const { return id >= 0 && id <= static_cast<int>(entries_.size()); }
  QVariantMap propertiesOf(int id) const;

  std::vector<StatusMenuEntry> entries_;
  uint revision_ = 1;
};

}  // namespace spacemint
