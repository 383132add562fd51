#include "Spacemint/views/ItemActions.h"

#include "core/wording/CleanupText.h"

#include <QClipboard>
#include <QGuiApplication>

namespace spacemint {

namespace {

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

}  // namespace

void ItemActions::reveal(const std::string& path) const {
  host_.desktop.opener.reveal(Paths::logical(path));
}

void ItemActions::copyPath(const std::string& path) const {
  QGuiApplication::clipboard()->setText(QString::fromStdString(Paths::logical(path)));
}

void ItemActions::showInFolders(const ItemRow& row) const {
  host_.model.setFolderPath(row.isDirectory ? row.path : folderOf(row.path));
  host_.model.setTab(Tab::folders);
}

void ItemActions::remove(const ItemRow& row) const {
  if (isInTrash(row)) {
    host_.model.confirmDelete(row.path, Paths::lastComponent(row.path), row.size,
                              std::string{CleanupText::deleteNote});
  } else {
    host_.model.confirmTrash({.path = row.path, .size = row.size, .modified = {}});
  }
}

}  // namespace spacemint
