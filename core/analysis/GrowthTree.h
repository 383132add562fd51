#pragma once

#include "core/analysis/ChangeTree.h"

#include <string>
#include <vector>

namespace spacemint {

/// What grew, as a tree for people: only what matters, the largest growth first. Sizes are in bytes.
struct GrowthTree {
  /// A child is listed from this growth, or from this share of its folder's growth on.
  static constexpr Bytes listedFrom = 100'000'000;
  static constexpr double listedShare = 0.05;
  /// A folder in which one child has at least this share of the growth has a row with that child.
  static constexpr double joiningShare = 0.95;

  /// The path of the last of `names`.
  std::string path;
  /// The name; several of them where folders are joined with the one thing that grew in them.
  std::vector<std::string> names;
  Bytes size = 0;
  Bytes delta = 0;
  bool isDirectory = false;
  bool isNew = false;
  std::vector<GrowthTree> children = {};
  /// How many further children grew, each by too little for this list, and by how much.
  std::size_t smaller = 0;
  Bytes smallerDelta = 0;

  bool operator==(const GrowthTree&) const = default;
};

/// The tree of what grew below `root`, the scanned folder, which is never joined. Pure; any thread.
GrowthTree growthTree(const ChangeTree& root);

}  // namespace spacemint
