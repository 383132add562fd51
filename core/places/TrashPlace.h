#pragma once

#include "core/tree/Snapshot.h"

#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// Where the user's Trash lies.
struct TrashPlace {
  /// The Trash as one folder of the scan tree.
  std::string folder;
  /// What is emptied to empty it.
  std::vector<std::string> emptied;
};

/// ".Trash" in the home folder where the scan knows one, else "Trash" in `data`, where programs keep their
/// data.
TrashPlace trashPlace(const Snapshot* scan, std::string_view home, std::string_view data);

/// Whether a path lies in one of the two; the Trash itself does not.
bool isInTrash(std::string_view path, std::string_view home, std::string_view data);

}  // namespace spacemint
