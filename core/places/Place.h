#pragma once

#include "core/tree/Snapshot.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// The location of a well-known folder, as data.
struct Place {
  /// Relative to the home folder; "$cache/…" and "$data/…" are relative to the user's cache and data folders
  /// (XDG_CACHE_HOME, XDG_DATA_HOME); "/…" is absolute. "a:b" means both folders, "a|b" the first of the two
  /// that exists.
  std::string_view path;
  /// The environment variable that moves the place, optionally followed by a path inside the variable's
  /// folder: "GOCACHE", "CARGO_HOME/registry/src". Of several variables, separated by "|", the first one with
  /// a usable value is used. A usable value is an absolute path, or several separated by ":". The home folder
  /// and its ancestors are never used: no tool owns them.
  std::string_view movedBy = {};

  bool operator==(const Place&) const = default;
};

/// Conda's package folders; which one exists depends on how Conda was installed.
inline constexpr std::string_view condaPackages =
    ".conda/pkgs:miniconda3/pkgs:anaconda3/pkgs:micromamba/pkgs";

/// Returns the value of an environment variable, or nothing if the variable is not set. An empty function
/// means an environment without variables.
using Environment = std::function<std::optional<std::string>(const std::string& name)>;

/// Finds well-known places in a scan. The snapshot must outlive the finder. Reads no disk; any thread.
class PlaceFinder {
 public:
  /// A place in the tree. `path` is the full path in the tree; `node` is valid until the snapshot changes.
  struct Found {
    std::string path;
    const Node* node;
  };

  PlaceFinder(const Snapshot& snapshot, std::string_view home, Environment environment);

  /// All folders of a place that are in the tree.
  std::vector<Found> find(const Place& place) const;

  /// The first folder of a place that is in the tree; absent if none is.
  std::optional<Found> findOne(const Place& place) const;

 private:
  std::vector<std::string> movedTo(std::string_view movedBy) const;
  std::string absolute(std::string_view path) const;
  std::optional<std::string> folderVariable(std::string_view name) const;

  const Snapshot& snapshot_;
  std::string home_;
  Environment environment_;
};

}  // namespace spacemint
