#include "Spacemint/views/Files.h"

#include "Spacemint/views/FolderText.h"
#include "core/wording/FindingText.h"

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

// The folder, and what a removal frees if that is less than the size.
std::string Files::subtitleOf(const FileItem& file) const {
  const std::string folder = Paths::display(Paths::withoutTrailingSlash(folderOf(file)), host_.home);
  const auto& freed = host_.model.findings().freesAtMost;
  const auto found = freed.find(file.path);
  if (found == freed.end()) return folder;
  return FindingText::freesAtMost(found->second, host_.locale) + " · " + folder;
}

void Files::update() {
  std::vector<ListItem> items;
  for (const FileItem& file : host_.model.findings().largestFiles) {
    items.push_back({.id = file.path,
                     .path = file.path,
                     .size = file.size,
                     .subtitle = subtitleOf(file),
                     .canTrash = true});
  }
  const bool hasNone = items.empty() && host_.model.currentFindings().isReady();
  largest_.assign(std::move(items), {.text = hasNone ? FolderText::noLargeFiles(host_.locale) : ""});
}

}  // namespace spacemint
