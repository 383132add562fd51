#pragma once

#include "core/host/Removal.h"
#include "core/host/linux/HandleFacts.h"

#include <expected>
#include <string>

namespace spacemint {

/// An item held open (O_PATH), so that nobody can put another one in its place unnoticed.
struct HeldItem {
  FileHandle handle;
  HandleFacts facts;
};

/// Opens the entry `name` of an open folder. `path` names it in a failure. Fails with EXDEV where something
/// is mounted on it.
std::expected<HeldItem, RemovalFailure> holdEntry(const FileHandle& folder, const std::string& name,
                                                  const std::string& path);

/// A held item with the folder that holds it (O_PATH) and its name there.
struct HeldTarget {
  FileHandle parent;
  std::string name;
  HeldItem item;
};

/// Goes down to a target step by step and holds it. Each folder is opened from the one above it without
/// following links, so a folder that is swapped for a link on the way ends the search instead of leading it
/// elsewhere. Single "." and doubled "/" are passed over; paths may be of any length. Fails with ESTALE where
/// another item than the confirmed one stands there.
std::expected<HeldTarget, RemovalFailure> holdTarget(const RemovalTarget& target);

}  // namespace spacemint
