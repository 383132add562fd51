#pragma once

#include "core/places/Place.h"
#include "core/tree/Snapshot.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// A place, or several of one kind, where space can be freed.
struct Suggestion {
  struct Location {
    /// Full path in the scan tree.
    std::string path;
    Bytes size = 0;

    const std::string& id() const { return path; }
    bool operator==(const Location&) const = default;
  };

  /// Stable key, such as "downloads".
  std::string id;
  std::string title;
  std::string advice;
  /// Name of the icon.
  std::string symbol;
  std::vector<Location> locations;

  /// Sum of the locations.
  Bytes size() const;

  bool operator==(const Suggestion&) const = default;
};

/// Where to free up space, read from a finished scan. Nothing here touches the disk.
namespace Suggestions {

/// The Trash of a scan.
struct TrashInfo {
  std::string path;
  Bytes size = 0;
  /// Items whose names begin with ".", which file managers do not show.
  std::vector<Suggestion::Location> hiddenItems;

  Bytes hiddenSize() const;

  bool operator==(const TrashInfo&) const = default;
};

struct FindArguments {
  const Snapshot& in;
  std::string_view home;
  Bytes minimum = 0;
  Environment environment = {};
};

/// What takes at least `minimum` bytes, all locations of a suggestion together: well-known places, and
/// project folders anywhere in the tree. Largest first.
std::vector<Suggestion> find(const FindArguments& arguments);

struct TrashArguments {
  const Snapshot& in;
  std::string_view home;
  Environment environment = {};
};

/// The user's Trash; absent when it is not in the tree.
std::optional<TrashInfo> trash(const TrashArguments& arguments);

}  // namespace Suggestions

}  // namespace spacemint
