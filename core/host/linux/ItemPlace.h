#pragma once

#include "core/base/Error.h"
#include "core/host/FileHandle.h"
#include "core/host/Removal.h"

#include <expected>
#include <string>

namespace spacemint {

/// Where an item is: a handle of the folder that holds it (O_PATH), and its name there.
struct ItemPlace {
  FileHandle parent;
  std::string name;
};

/// Goes down to a target step by step, opening each folder from the one above it without following links, so
/// that a folder swapped for a link on the way ends the search instead of leading it elsewhere. Single "."
/// and doubled "/" are passed over; paths may be of any length.
std::expected<ItemPlace, Error> placeOf(const RemovalTarget& target);

}  // namespace spacemint
