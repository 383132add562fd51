#include "core/cleanup/Remeasure.h"

#include "core/host/AllocatedSize.h"
#include "core/host/FileStamp.h"
#include "core/host/Removal.h"
#include "core/scan/DiskScanner.h"
#include "core/tree/Paths.h"

#include <cerrno>

namespace spacemint {

namespace {

// A scan of it would measure what it leads to.
bool isSymbolicLink(const std::string& path, const FileIdentity& identity) {
  const FileStamp target = fileStamp(path);
  return target.device != identity.device || target.inode != identity.inode;
}

}  // namespace

Measured measureAgain(std::string path, Bytes minNodeSize, const std::vector<std::string>& excludes) {
  const Excludes compiled = Excludes::usable(excludes, "");
  const auto identity = fileIdentity(path);
  Measured measured{.path = std::move(path), .exists = true};
  if (!identity && (identity.error().isSystem(ENOENT) || identity.error().isSystem(ENOTDIR))) {
    measured.exists = false;
  } else if (identity && isSymbolicLink(measured.path, *identity)) {
    measured.tree = Node{.name = measured.path, .size = allocatedSize(measured.path).value_or(0)};
  } else if (auto result = DiskScanner::scan(
                 {.root = measured.path, .minNodeSize = minNodeSize, .excludes = &compiled})) {
    measured.tree = std::move(result->root);
  }
  return measured;
}

std::string highestMissing(const Snapshot& snapshot, std::string path) {
  if (snapshot.nodeAt(path) != nullptr) return path;
  for (;;) {
    std::string above = Paths::parent(path);
    if (above == path || !snapshot.components(above) || snapshot.nodeAt(above) != nullptr) return path;
    path = std::move(above);
  }
}

bool putInto(Snapshot& snapshot, Measured measured, bool assumeEmptied) {
  if (measured.tree) {
    const Node* known = snapshot.nodeAt(measured.path);
    if (known != nullptr && known->size == measured.tree->size) return false;
    return snapshot.upsert(measured.path, std::move(*measured.tree));
  }
  if (!measured.exists) return snapshot.remove(measured.path);
  if (!assumeEmptied) return false;
  return snapshot.replace(measured.path, Node{.name = measured.path, .isDirectory = true});
}

}  // namespace spacemint
