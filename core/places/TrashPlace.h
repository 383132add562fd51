#pragma once

#include "core/tree/Snapshot.h"

#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// The location of the user's Trash.
struct TrashPlace {
  /// The Trash as one folder of the scan tree.
  std::string folder;
  /// Emptying the Trash deletes the contents of these folders.
  std::vector<std::string> emptied;
};

/// ".Trash" in the home folder `home` if the scan contains it, otherwise "Trash" in the user's data folder
/// `data`. `scan` may be null.
TrashPlace trashPlace(const Snapshot* scan, std::string_view home, std::string_view data);

/// True for a path inside one of the two possible Trash folders; false for the Trash folders themselves.
bool isInTrash(std::string_view path, std::string_view home, std::string_view data);

}  // namespace spacemint
