#pragma once

#include "core/analysis/ChangeTree.h"
#include "core/picture/Box.h"
#include "core/tree/Node.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// The folder that a picture shows, and what changed in it; `change` is null if nothing did, or if there is
/// nothing to compare with. Both outlive the picture.
struct PicturedFolder {
  const Node* node = nullptr;
  const ChangeTree* change = nullptr;
};

/// A rectangle of a picture of a folder.
struct Tile {
  enum class Kind : std::uint8_t {
    /// A file, or a folder whose content is not drawn in it.
    item,
    /// A folder around the tiles of what is in it.
    frame,
    /// What is too small for tiles of its own.
    small,
    /// The pictured folder itself.
    folder,
    /// The same, where the picture is of a whole volume; then its other parts.
    files,
    notInFiles,
    free
  };
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  Kind kind = Kind::item;
  Box box;
  /// Null for all kinds without a path.
  const Node* node = nullptr;
  const ChangeTree* change = nullptr;
  Bytes size = 0;
  /// The index of the tile of the folder that this is in; `none` in the pictured folder itself.
  std::size_t parent = none;
  int depth = 0;
  /// For `small`: how many listed items it stands for.
  std::int64_t count = 0;

  /// The bytes that came since the other scan, at most `size`; or, below 0, those that went.
  Bytes growth() const { return change != nullptr ? std::min(change->delta, size) : 0; }
};

/// Lengths of a tree map.
struct MapMeasures {
  /// The height of a frame's title.
  double title = 20;
  /// Between a frame and its content.
  double inset = 2;
  double gap = 2;
  /// A folder gets a frame from this size on.
  double frameWidth = 72;
  double frameHeight = 44;
  /// What would have a smaller area than a square of this side is joined with its like.
  double smallest = 6;
  int levels = 3;
};

/// A squarified tree map of the folder: a frame or a tile for each item, in each frame its content, down to
/// `levels`. Frames come before what is in them. Empty for a folder of nothing. Pure.
std::vector<Tile> treeMap(const PicturedFolder& folder, const Box& in, const MapMeasures& measures = {});

/// Lengths of an icicle.
struct IcicleMeasures {
  double width = 420;
  double row = 28;
  double gap = 2;
  /// Narrower items are joined.
  double smallest = 6;
};

/// The parts of the volume that a picture of the whole disk shows, in bytes.
struct VolumeParts {
  Bytes files = 0;
  Bytes notInFiles = 0;
  Bytes free = 0;
};

/// Three rows: the folder, or the parts of its volume if given; below it its children in the order of the
/// list, and below each of them theirs. Pure.
std::vector<Tile> icicle(const PicturedFolder& folder, const IcicleMeasures& measures,
                         const std::optional<VolumeParts>& volume = {});

/// The index of the uppermost tile at that point; `Tile::none` if there is none.
std::size_t tileAt(const std::vector<Tile>& tiles, double x, double y);

/// The path of the tile's node, in a picture of the folder at `path`. Empty for a tile without a node.
std::string pathOf(const std::vector<Tile>& tiles, std::size_t index, const std::string& path);

/// The tile of the item at `below`, a path that begins in `folder`, or of the nearest item above it that has
/// one; `Tile::none` if there is none.
std::size_t tileOf(const std::vector<Tile>& tiles, const Node& folder, std::string_view below);

/// When the newest listed file in the node last changed; absent if unknown.
std::optional<Date> newestChange(const Node& node);

}  // namespace spacemint
