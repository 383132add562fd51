#include "Spacemint/views/Files.h"

#include "Spacemint/views/FolderText.h"

namespace spacemint {

namespace {

std::string folderOf(const FileItem& file) {
  return file.path.substr(0, file.path.size() - file.name().size());
}

}  // namespace

Files::Files(const ItemActions& actions) : host_(actions.host()), largest_(actions) {
  connect(&host_.model.currentFindings(), &CurrentFindings::updated, this, &Files::update);
  update();
}

void Files::update() {
  std::vector<ItemRow> rows;
  for (const FileItem& file : host_.model.findings().largestFiles) {
    rows.push_back({.id = file.path,
                    .path = file.path,
                    .size = file.size,
                    .subtitle = Paths::display(Paths::withoutTrailingSlash(folderOf(file)), host_.home),
                    .canTrash = true});
  }
  const bool hasNone = rows.empty() && host_.model.currentFindings().isReady();
  largest_.assign({.rows = std::move(rows), .text = hasNone ? FolderText::noLargeFiles(host_.locale) : ""});
}

}  // namespace spacemint
