#pragma once

#include "Spacemint/model/AppModel.h"
#include "core/picture/FolderPicture.h"

#include <optional>
#include <string>
#include <string_view>

namespace spacemint {

/// A folder of the scan that is shown, with its path as the tree spells it, and with what changed in it.
struct ShownFolder {
  /// Keeps `node` and `change`; null without a scan.
  SharedSnapshot snapshot;
  std::shared_ptr<const ChangeTree> changes;
  std::string path;
  const Node* node = nullptr;
  /// Null if nothing changed in the folder, or if there is nothing to compare with.
  const ChangeTree* change = nullptr;
  /// Absent for the root of the scan.
  std::optional<std::string> parent = {};

  PicturedFolder pictured() const { return {node, change}; }
};

/// The folder of the scan at `wanted`, or the nearest folder above it that the scan has; without `wanted` the
/// root.
ShownFolder folderAt(const AppModel& model, const std::optional<std::string>& wanted);

/// The folder that the person opened last.
ShownFolder shownFolder(const AppModel& model);

/// Whether the scan may have missed something in a folder, so that its size is a lower bound.
bool isLowerBound(const Snapshot& scan, std::string_view folder);

/// What a row says of the size of a folder in a scan that was stopped: any folder may hold more. Absent for
/// all others, of which a row says the size.
std::optional<std::string> rowSize(const Snapshot& scan, const Node& item, const std::string& locale);

/// How many files an item is or holds, and how many of them are in none of its children.
std::int64_t filesIn(const Node& item);
std::int64_t unlistedFiles(const Node& folder);
/// "12,000 files"
std::string countText(std::int64_t files, const std::string& locale);

/// The parts of the volume, for a scan of all of it while its root is open.
std::optional<VolumeParts> volumeParts(AppModel& model, const ShownFolder& folder);

/// The rest of `path` below `folder`: "a/b" of "/home/a/b" in "/home". Absent if it is not below it.
std::optional<std::string_view> pathBelow(std::string_view path, std::string_view folder);

}  // namespace spacemint
