#pragma once

#include "Spacemint/views/ShownText.h"
#include "core/base/PlatformWords.h"
#include "core/base/Translation.h"

#include <QObject>
#include <QQmlEngine>

namespace spacemint {

/// The titles of the actions of an item, for its buttons and its menu.
class ItemText : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON
  Q_PROPERTY(QString showInFileManager READ showInFileManager NOTIFY fileManagerChanged)
  Q_PROPERTY(QString showInFolders READ showInFolders CONSTANT)
  Q_PROPERTY(QString copyPath READ copyPath CONSTANT)
  Q_PROPERTY(QString leaveOut READ leaveOut CONSTANT)
 public:
  using QObject::QObject;

  const QString& showInFileManager() const { return showInFileManager_; }
  /// The name of the file manager in the user's language.
  void setFileManager(const std::string& name) {
    showInFileManager_ = ShownText::plain(i18n("Show in {application}", {{"application", name}}));
    Q_EMIT fileManagerChanged();
  }

  QString showInFolders() const { return ShownText::plain(i18n("Show in Folders")); }
  QString copyPath() const { return ShownText::plain(i18n("Copy Path")); }
  QString leaveOut() const { return ShownText::plain(i18n("Leave Out of Scans")); }

  /// The tool tip of the button that removes an item.
  Q_INVOKABLE QString removeHelp(bool isInTrash) const {
    return ShownText::plain(isInTrash ? i18n("Delete permanently…") : i18n("Move to Trash…"));
  }
  /// The menu entry that removes an item.
  Q_INVOKABLE QString removeEntry(bool isInTrash) const {
    return ShownText::plain(isInTrash ? i18n("Delete Permanently…") : i18n("Move to Trash…"));
  }

 Q_SIGNALS:
  void fileManagerChanged();

 private:
  QString showInFileManager_ = ShownText::plain(i18n(PlatformWords::showInFileManager));
};

}  // namespace spacemint
