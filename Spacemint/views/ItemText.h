#pragma once

#include <QObject>
#include <QQmlEngine>

namespace spacemint {

/// What can be done with an item, as its buttons and its menu say it.
class ItemText : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON
  Q_PROPERTY(QString showInFinder READ showInFinder CONSTANT)
  Q_PROPERTY(QString showInFolders READ showInFolders CONSTANT)
  Q_PROPERTY(QString copyPath READ copyPath CONSTANT)
 public:
  using QObject::QObject;

  QString showInFinder() const { return QStringLiteral("Show in Finder"); }
  QString showInFolders() const { return QStringLiteral("Show in Folders"); }
  QString copyPath() const { return QStringLiteral("Copy Path"); }

  /// The help of the button that removes an item.
  Q_INVOKABLE QString removeHelp(bool isInTrash) const {
    return isInTrash ? QStringLiteral("Delete permanently…") : QStringLiteral("Move to Trash…");
  }
  /// The same as an entry of a menu.
  Q_INVOKABLE QString removeEntry(bool isInTrash) const {
    return isInTrash ? QStringLiteral("Delete Permanently…") : QStringLiteral("Move to Trash…");
  }
};

}  // namespace spacemint
