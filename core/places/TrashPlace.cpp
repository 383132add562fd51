#include "core/places/TrashPlace.h"

#include "core/base/Unicode.h"
#include "core/tree/Paths.h"

namespace spacemint {

TrashPlace trashPlace(const Snapshot* scan, std::string_view home, std::string_view data) {
  std::string plain = Paths::join(home, ".Trash");
  if (scan != nullptr && scan->nodeAt(plain) != nullptr) return {.folder = plain, .emptied = {plain}};
  const std::string folder = Paths::join(data, "Trash");
  return {.folder = folder,
          .emptied = {Paths::join(folder, "files"), Paths::join(folder, "info"),
                      Paths::join(folder, "expunged")}};
}

bool isInTrash(std::string_view path, std::string_view home, std::string_view data) {
  const std::string shortPath = Paths::logical(path);
  const auto isIn = [&](const std::string& folder) {
    return canonicalPrefixLength(shortPath, Paths::join(folder, "")).has_value();
  };
  return isIn(Paths::join(home, ".Trash")) || isIn(Paths::join(data, "Trash"));
}

}  // namespace spacemint
