#include "Spacemint/views/ItemActions.h"

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
    host_.model.confirm(DeleteRequest{
        .path = row.path, .name = Paths::lastComponent(row.path), .size = row.size, .note = deleteNote});
  } else {
    host_.model.confirm(TrashRequest{.path = row.path, .size = row.size});
  }
}

}  // namespace spacemint
