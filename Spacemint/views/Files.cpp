#include "Spacemint/views/Files.h"

#include "Spacemint/views/FolderText.h"

namespace spacemint {

namespace {

std::string folderOf(const FileItem& file) {
  return file.path.substr(0, file.path.size() - file.name().size());
}

}  // namespace

Files::Files(const UiHost& host) : host_(host), largest_(host) {
  connect(&host_.model.currentFindings(), &CurrentFindings::updated, this, &Files::update);
  update();
}

void Files::update() {
  std::vector<ListItem> items;
  for (const FileItem& file : host_.model.findings().largestFiles) {
    items.push_back({.id = file.path,
                     .path = file.path,
                     .size = file.size,
                     .subtitle = Paths::display(Paths::withoutTrailingSlash(folderOf(file)), host_.home),
                     .canTrash = true});
  }
  const bool hasNone = items.empty() && host_.model.currentFindings().isReady();
  largest_.assign(std::move(items), {.text = hasNone ? FolderText::noLargeFiles(host_.locale) : ""});
}

}  // namespace spacemint
