#include "Spacemint/views/Folders.h"

#include "Spacemint/views/FolderText.h"
#include "Spacemint/views/ShownFolder.h"
#include "core/base/ByteFormat.h"

#include <algorithm>
#include <utility>

namespace spacemint {

namespace {

double share(Bytes part, Bytes whole) {
  return whole > 0 ? static_cast<double>(part) / static_cast<double>(whole) : 0;
}

std::vector<ItemRow> rowsOf(const ShownFolder& folder, const UiHost& host) {
  std::vector<ItemRow> rows;
  rows.reserve(folder.node->children.size() + 1);
  for (const Node& child : folder.node->children) {
    std::string path = Paths::join(folder.path, child.name);
    rows.push_back({.id = path,
                    .path = std::move(path),
                    .size = child.size,
                    .isDirectory = child.isDirectory,
                    .fraction = share(child.size, folder.node->size),
                    .showsChevron = child.isDirectory,
                    .canTrash = true});
  }
  if (const Bytes rest = folder.node->unlistedSize(); rest > 0) {
    rows.push_back({.id = "",
                    .size = rest,
                    .title = FolderText::smallItems(!rows.empty(), host.locale),
                    .symbol = "doc",
                    .fraction = share(rest, folder.node->size)});
  }
  return rows;
}

// The row that leads to a folder further down; the first where none does.
int rowTowards(const std::string& below, const ShownFolder& folder) {
  if (!below.starts_with(folder.path)) return 0;
  const auto& children = folder.node->children;
  const auto row = std::ranges::find_if(children, [&](const Node& child) {
    const std::string path = Paths::join(folder.path, child.name);
    return below == path || below.starts_with(path + '/');
  });
  return row != children.end() ? static_cast<int>(row - children.begin()) : 0;
}

}  // namespace

Folders::Folders(const ItemActions& actions) : actions_(actions), content_(actions) {
  AppModel& model = actions.host().model;
  connect(&model, &AppModel::folderPathChanged, this, &Folders::update);
  connect(&model.history(), &ScanHistory::snapshotChanged, this, &Folders::update);
  update();
}

void Folders::update() {
  const UiHost& host = actions_.host();
  const SharedSnapshot& snapshot = host.model.history().snapshot();
  if (!snapshot) return content_.assign({});
  const ShownFolder folder = ShownFolder::in(*snapshot, host.model.folderPath());
  const auto titleOf = [&](const std::string& path) {
    return QString::fromStdString(FolderText::title(path, snapshot->rootPath(), host.home));
  };
  auto rows = rowsOf(folder, host);
  const std::string text{rows.empty() ? FolderText::empty : ""};
  content_.assign({.rows = std::move(rows), .text = text});
  const std::string before = std::exchange(path_, folder.path);
  parent_ = folder.parent;
  title_ = titleOf(folder.path);
  sizeText_ = QString::fromStdString(ByteFormat::string(folder.node->size, host.locale));
  parentTitle_ = parent_ ? titleOf(*parent_) : QString{};
  Q_EMIT changed();
  if (before != path_) Q_EMIT opened(rowTowards(before, folder));
}

void Folders::goBack() {
  if (parent_) actions_.host().model.setFolderPath(*parent_);
}

void Folders::reveal() const {
  if (!path_.empty()) actions_.reveal(path_);
}

}  // namespace spacemint
