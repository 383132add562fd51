#include "core/picture/FolderPicture.h"

#include "core/picture/Squarify.h"
#include "core/tree/Paths.h"

#include <algorithm>
#include <ranges>

namespace spacemint {

namespace {

const ChangeTree* changeOf(const Node& child, const ChangeTree* folder) {
  return folder != nullptr ? folder->child(child.name) : nullptr;
}

// The children that get tiles of their own, and all that does not.
struct Division {
  std::vector<const Node*> shown;
  Bytes rest = 0;
  std::int64_t restCount = 0;
};

// `room` is the extent of the whole folder, as an area or a length; smaller parts than `smallest` are joined.
Division divide(const Node& folder, double room, double smallest) {
  Division division{.shown = {}, .rest = folder.unlistedSize()};
  if (folder.size <= 0) return division;
  const double scale = room / static_cast<double>(folder.size);
  for (const Node& child : folder.children) {
    if (child.size > 0 && static_cast<double>(child.size) * scale >= smallest) {
      division.shown.push_back(&child);
    } else {
      division.rest = saturatingAdd(division.rest, child.size);
      ++division.restCount;
    }
  }
  return division;
}

std::optional<Tile> smallTile(const Division& division, std::size_t parent, int depth) {
  if (division.rest <= 0) return std::nullopt;
  return Tile{.kind = Tile::Kind::small,
              .box = {},
              .size = division.rest,
              .parent = parent,
              .depth = depth,
              .count = division.restCount};
}

class MapMaker {
 public:
  explicit MapMaker(const MapMeasures& measures) : measures_(measures) {}

  void add(const PicturedFolder& folder, const Box& in, std::size_t parent, int depth) {
    const Division division = divide(*folder.node, in.area(), measures_.smallest * measures_.smallest);
    std::vector<Tile> tiles;
    for (const Node* child : division.shown) {
      tiles.push_back({.box = {},
                       .node = child,
                       .change = changeOf(*child, folder.change),
                       .size = child->size,
                       .parent = parent,
                       .depth = depth});
    }
    if (auto rest = smallTile(division, parent, depth)) {
      const auto place =
          std::ranges::find_if(tiles, [&](const Tile& tile) { return tile.size < rest->size; });
      tiles.insert(place, *rest);
    }
    std::vector<double> sizes;
    for (const Tile& tile : tiles) sizes.push_back(static_cast<double>(tile.size));
    const std::vector<Box> boxes = squarified(sizes, in);
    for (std::size_t i = 0; i < tiles.size(); ++i) {
      tiles[i].box = withoutGap(boxes[i], in);
      place(tiles[i]);
    }
  }

  std::vector<Tile> take() { return std::move(tiles_); }

 private:
  // The gap is at the right and the lower side, except at the edge of the picture or the frame.
  Box withoutGap(Box box, const Box& in) const {
    constexpr double nearly = 0.01;
    if (box.right() < in.right() - nearly) box.width = std::max(0.5, box.width - measures_.gap);
    if (box.bottom() < in.bottom() - nearly) box.height = std::max(0.5, box.height - measures_.gap);
    return box;
  }

  void place(Tile& tile) {
    const Box& box = tile.box;
    const bool isFrame = tile.node != nullptr && !tile.node->children.empty() &&
                         tile.depth + 1 < measures_.levels && box.width >= measures_.frameWidth &&
                         box.height >= measures_.frameHeight;
    if (isFrame) tile.kind = Tile::Kind::frame;
    tiles_.push_back(tile);
    if (!isFrame) return;
    const double inset = measures_.inset;
    const Box inside{box.x + inset, box.y + measures_.title, box.width - 2 * inset,
                     box.height - measures_.title - inset};
    add({tile.node, tile.change}, inside, tiles_.size() - 1, tile.depth + 1);
  }

  MapMeasures measures_;
  std::vector<Tile> tiles_;
};

class IcicleMaker {
 public:
  explicit IcicleMaker(const IcicleMeasures& measures) : measures_(measures) {}

  Box boxAt(int row, double x, double width) const {
    return {x, row * (measures_.row + measures_.gap), width, measures_.row};
  }
  void add(Tile tile) { tiles_.push_back(tile); }

  // Adds the row below the tile at `parent`.
  void addBelow(const PicturedFolder& folder, std::size_t parent) {
    if (folder.node->size <= 0) return;
    const Tile above = tiles_[parent];
    const double scale = above.box.width / static_cast<double>(folder.node->size);
    const Division division = divide(*folder.node, above.box.width, measures_.smallest);
    const std::size_t first = tiles_.size();
    double x = above.box.x;
    for (const Node* child : division.shown) {
      const double width = static_cast<double>(child->size) * scale;
      add({.box = boxAt(above.depth + 1, x, width),
           .node = child,
           .change = changeOf(*child, folder.change),
           .size = child->size,
           .parent = parent,
           .depth = above.depth + 1});
      x += width;
    }
    if (auto rest = smallTile(division, parent, above.depth + 1)) {
      rest->box = boxAt(rest->depth, x, std::max(0.0, above.box.right() - x));
      if (rest->box.width >= 1) add(*rest);
    }
    for (std::size_t i = first; i + 1 < tiles_.size(); ++i)
      tiles_[i].box.width = std::max(1.0, tiles_[i].box.width - measures_.gap);
  }

  void addLastRow() {
    const std::size_t count = tiles_.size();
    for (std::size_t i = 0; i < count; ++i) {
      const Tile& tile = tiles_[i];
      if (tile.depth == 1 && tile.node != nullptr && !tile.node->children.empty())
        addBelow({tile.node, tile.change}, i);
    }
  }

  std::vector<Tile> take() { return std::move(tiles_); }

 private:
  IcicleMeasures measures_;
  std::vector<Tile> tiles_;
};

// The first row of a picture of the whole disk, true to scale.
void addVolume(IcicleMaker& maker, const PicturedFolder& folder, const VolumeParts& volume,
               const IcicleMeasures& measures) {
  const std::pair<Tile::Kind, Bytes> parts[] = {{Tile::Kind::files, volume.files},
                                                {Tile::Kind::notInFiles, volume.notInFiles},
                                                {Tile::Kind::free, volume.free}};
  double total = 0;
  for (const auto& [kind, size] : parts) total += static_cast<double>(std::max<Bytes>(0, size));
  double x = 0;
  for (const auto& [kind, size] : parts) {
    const double width =
        total > 0 ? measures.width * static_cast<double>(std::max<Bytes>(0, size)) / total : 0;
    const double gap = kind == Tile::Kind::free ? 0 : measures.gap;
    // The files come first, and stay even where they are nothing: the next row is below them.
    if (kind == Tile::Kind::files || width > gap + 1) {
      const bool isFiles = kind == Tile::Kind::files;
      maker.add({.kind = kind,
                 .box = maker.boxAt(0, x, std::max(1.0, width - gap)),
                 .node = isFiles ? folder.node : nullptr,
                 .change = isFiles ? folder.change : nullptr,
                 .size = size});
    }
    x += width;
  }
}

}  // namespace

std::vector<Tile> treeMap(const PicturedFolder& folder, const Box& in, const MapMeasures& measures) {
  MapMaker maker{measures};
  if (folder.node->size > 0 && in.width > 0 && in.height > 0) maker.add(folder, in, Tile::none, 0);
  return maker.take();
}

std::vector<Tile> icicle(const PicturedFolder& folder, const IcicleMeasures& measures,
                         const std::optional<VolumeParts>& volume) {
  IcicleMaker maker{measures};
  if (volume) {
    addVolume(maker, folder, *volume, measures);
  } else {
    maker.add({.kind = Tile::Kind::folder,
               .box = maker.boxAt(0, 0, measures.width),
               .node = folder.node,
               .change = folder.change,
               .size = folder.node->size});
  }
  maker.addBelow(folder, 0);
  maker.addLastRow();
  return maker.take();
}

std::size_t tileAt(const std::vector<Tile>& tiles, double x, double y) {
  for (std::size_t i = tiles.size(); i > 0; --i) {
    if (tiles[i - 1].box.contains(x, y)) return i - 1;
  }
  return Tile::none;
}

std::string pathOf(const std::vector<Tile>& tiles, std::size_t index, const std::string& path) {
  if (index >= tiles.size() || tiles[index].node == nullptr) return "";
  std::vector<const std::string*> names;
  for (std::size_t at = index; at != Tile::none; at = tiles[at].parent) {
    const bool isFolder = tiles[at].kind == Tile::Kind::folder || tiles[at].kind == Tile::Kind::files;
    if (!isFolder) names.push_back(&tiles[at].node->name);
  }
  std::string result = path;
  for (const std::string* name : names | std::views::reverse) result = Paths::join(result, *name);
  return result;
}

std::size_t tileOf(const std::vector<Tile>& tiles, const Node& folder, std::string_view below) {
  std::size_t found = Tile::none;
  const Node* node = &folder;
  while (!below.empty()) {
    const std::string_view name = below.substr(0, below.find('/'));
    below.remove_prefix(std::min(below.size(), name.size() + 1));
    if (name.empty()) continue;
    node = node->child(name);
    const auto tile = node != nullptr ? std::ranges::find(tiles, node, &Tile::node) : tiles.end();
    if (tile == tiles.end()) break;
    found = static_cast<std::size_t>(tile - tiles.begin());
  }
  return found;
}

std::optional<Date> newestChange(const Node& node) {
  std::optional<Date> newest = node.modified;
  for (const Node& child : node.children) newest = std::max(newest, newestChange(child));
  return newest;
}

}  // namespace spacemint
