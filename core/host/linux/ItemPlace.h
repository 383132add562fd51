#pragma once

#include "core/host/Removal.h"
#include "core/host/linux/HandleFacts.h"

#include <expected>
#include <string>

namespace spacemint {

/// An item held open (O_PATH). The handle keeps referring to the same item if the item is renamed or
/// replaced.
struct HeldItem {
  FileHandle handle;
  HandleFacts facts;
};

/// Opens the entry `name` of an open folder. `path` is used only in failures. Fails with EXDEV if the entry
/// is a mount point.
std::expected<HeldItem, RemovalFailure> holdEntry(const FileHandle& folder, const std::string& name,
                                                  const std::string& path);

/// A held item, its open parent folder (O_PATH) and its name in that folder.
struct HeldTarget {
  FileHandle parent;
  std::string name;
  HeldItem item;
};

/// Opens the folders of a target's path one after the other, each relative to its parent and without
/// following links, and holds the target. So a folder that is replaced by a link at the same time causes a
/// failure and leads nowhere else. Skips "." and doubled "/"; paths may have any length. Fails with ESTALE if
/// the item is not `target.identity`. Blocks; any thread.
std::expected<HeldTarget, RemovalFailure> holdTarget(const RemovalTarget& target);

}  // namespace spacemint
