#pragma once

#include "core/tree/Snapshot.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// Where a well-known folder lies, as data.
struct Place {
  /// Relative to the home folder; "$cache/…" and "$data/…" are relative to where programs keep what they can
  /// make again and their data; "/…" is absolute. "a:b" is both of two folders, "a|b" the first of them that
  /// is there.
  std::string_view path;
  /// The environment variable that moves the place, alone or with a path inside the folder that it names:
  /// "GOCACHE", "CARGO_HOME/registry/src"; several between "|", of which the first counts that is set. It
  /// counts when it holds an absolute path, or several between ":". The home folder itself and the folders
  /// above it do not count: no tool owns them.
  std::string_view movedBy = {};

  bool operator==(const Place&) const = default;
};

/// Where Conda keeps packages, by the way it was installed.
inline constexpr std::string_view condaPackages =
    ".conda/pkgs:miniconda3/pkgs:anaconda3/pkgs:micromamba/pkgs";

/// The value of an environment variable; absent where it is not set. Empty for an environment without any.
using Environment = std::function<std::optional<std::string>(const std::string& name)>;

/// Finds well-known places in one scan. The scan must live as long as the object.
class PlaceFinder {
 public:
  /// A place in the tree. `path` is its full path there.
  struct Found {
    std::string path;
    const Node* node;
  };

  PlaceFinder(const Snapshot& snapshot, std::string_view home, Environment environment);

  /// The folders of a place that are in the tree.
  std::vector<Found> find(const Place& place) const;

  /// The folder of a place that is one, if it is in the tree.
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
