#include "Spacemint/views/ShownFolder.h"

#include "core/base/ByteFormat.h"
#include "core/wording/FindingText.h"

#include <algorithm>

namespace spacemint {

ShownFolder folderAt(const AppModel& model, const std::optional<std::string>& wanted) {
  const SharedSnapshot& snapshot = model.shown().snapshot();
  if (!snapshot) return {};
  const auto& changes = model.shown().findings().changes;
  ShownFolder found{.snapshot = snapshot,
                    .changes = changes,
                    .path = snapshot->rootPath(),
                    .node = &snapshot->root,
                    .change = changes.get()};
  const auto names = wanted ? snapshot->components(*wanted) : std::nullopt;
  if (!names) return found;
  for (const std::string& name : *names) {
    const Node* child = found.node->child(name);
    if (child == nullptr || !child->isDirectory) break;
    found.parent = found.path;
    found.path = Paths::join(found.path, child->name);
    found.node = child;
    if (found.change != nullptr) found.change = found.change->child(child->name);
  }
  return found;
}

ShownFolder shownFolder(const AppModel& model) {
  return folderAt(model, model.folderPath());
}

bool isLowerBound(const Snapshot& scan, std::string_view folder) {
  const Unread& unread = scan.coverage.unread;
  return scan.measuredPart || unread.isAtOrBelow(folder) || (unread.folders > 0 && folder == scan.rootPath());
}

std::optional<std::string> rowSize(const Snapshot& scan, const Node& item, const std::string& locale) {
  if (!scan.measuredPart || !item.isDirectory) return std::nullopt;
  return FindingText::folderSize(item.size, true, locale);
}

std::int64_t filesIn(const Node& item) {
  return item.isDirectory ? item.fileCount : 1;
}

std::int64_t unlistedFiles(const Node& folder) {
  std::int64_t files = folder.fileCount;
  for (const Node& child : folder.children) files -= filesIn(child);
  return std::max<std::int64_t>(files, 0);
}

std::string countText(std::int64_t files, const std::string& locale) {
  return counted(files, "{count} file", "{count} files", locale);
}

std::optional<VolumeParts> volumeParts(AppModel& model, const ShownFolder& folder) {
  const auto& account = model.account().account();
  if (!model.shown().isOfHere() || folder.node == nullptr || folder.parent) return std::nullopt;
  if (!account || !account->scanned.isWhole) return std::nullopt;
  return VolumeParts{.files = account->scanned.files,
                     .notInFiles = std::max<Bytes>(0, account->notInFiles()),
                     .free = account->space.free};
}

std::optional<std::string_view> pathBelow(std::string_view path, std::string_view folder) {
  if (!path.starts_with(folder) || path.size() <= folder.size()) return std::nullopt;
  path.remove_prefix(folder.size());
  if (path.front() == '/') return path.substr(1);
  return folder.ends_with('/') ? std::optional{path} : std::nullopt;
}

}  // namespace spacemint
