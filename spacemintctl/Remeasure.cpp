#include "spacemintctl/Remeasure.h"

#include "core/history/SnapshotWriter.h"
#include "core/host/Removal.h"
#include "core/scan/DiskScanner.h"
#include "spacemintctl/StoredScan.h"

namespace spacemint::ctl {

namespace {

// What cannot be measured but is still there keeps the size it had.
bool remeasure(Snapshot& scan, const std::string& path) {
  const Node* node = scan.nodeAt(path);
  if (node == nullptr) return false;
  auto result = DiskScanner::scan({.root = path, .minNodeSize = scan.minNodeSize});
  if (result) return node->size != result->root.size && scan.upsert(path, std::move(result->root));
  const auto identity = fileIdentity(path);
  return !identity && identity.error().isSystem(ENOENT) && scan.remove(path);
}

}  // namespace

std::expected<void, Error> remeasureInNewestScan(const std::vector<std::string>& paths) {
  const SnapshotStore store = SnapshotStore::standard();
  auto scan = storedScan(store, "");
  if (!scan) return {};
  bool isChanged = false;
  for (const std::string& path : paths) isChanged |= remeasure(*scan, path);
  if (!isChanged) return {};
  const auto saved = SnapshotWriter{store}.save(*scan, 1);
  if (!saved) return std::unexpected(saved.error());
  return {};
}

}  // namespace spacemint::ctl
