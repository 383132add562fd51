#pragma once

#include "core/places/Place.h"
#include "core/tree/Snapshot.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// One or several places of the same kind where the user can free space.
struct Suggestion {
  struct Location {
    /// Full path in the scan tree.
    std::string path;
    Bytes size = 0;

    const std::string& id() const { return path; }
    bool operator==(const Location&) const = default;
  };

  /// A key that never changes, such as "downloads".
  std::string id;
  std::string title;
  std::string advice;
  /// The name of the icon.
  std::string symbol;
  std::vector<Location> locations;

  /// The sum of the locations' sizes, in bytes.
  Bytes size() const;

  bool operator==(const Suggestion&) const = default;
};

/// Finds places to free space in a finished scan. Reads no disk; any thread.
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
  /// For the age of files; without it there is no suggestion of old files.
  std::optional<Date> now = {};
};

/// The id of the suggestion that points to large files that nobody changed for long, and the search that
/// finds them (`parseSearch`).
inline constexpr std::string_view largeAndOld = "large-and-old";
inline constexpr std::string_view largeAndOldSearch = "older:1y >100MB";

/// The suggestions whose locations together take at least `minimum` bytes, largest first: well-known places,
/// project folders anywhere in the tree, and large old files.
std::vector<Suggestion> find(const FindArguments& arguments);

struct TrashArguments {
  const Snapshot& in;
  std::string_view home;
  Environment environment = {};
};

/// The user's Trash; absent if the Trash is not in the tree.
std::optional<TrashInfo> trash(const TrashArguments& arguments);

}  // namespace Suggestions

}  // namespace spacemint
