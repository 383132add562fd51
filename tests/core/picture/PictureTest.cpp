// The layouts of the pictures, by what must hold for any tree of folders.

#include "core/picture/FolderPicture.h"
#include "core/picture/SpaceLine.h"
#include "core/picture/Squarify.h"
#include "core/tree/Paths.h"
#include "core/tree/TreeWalk.h"
#include "support/TreeBuilder.h"

#include <gmock/gmock.h>

#include <cmath>
#include <map>
#include <numeric>
#include <random>
#include <utility>

namespace spacemint {
namespace {

using support::file;
using support::folder;
using testing::ElementsAre;

constexpr double inexact = 1e-6;
constexpr Box screen{10, 20, 800, 500};

double overlap(const Box& a, const Box& b) {
  const double width = std::min(a.right(), b.right()) - std::max(a.x, b.x);
  const double height = std::min(a.bottom(), b.bottom()) - std::max(a.y, b.y);
  return std::max(0.0, width) * std::max(0.0, height);
}

bool isInside(const Box& inner, const Box& outer) {
  return inner.x >= outer.x - inexact && inner.y >= outer.y - inexact &&
         inner.right() <= outer.right() + inexact && inner.bottom() <= outer.bottom() + inexact;
}

class PictureTest : public testing::TestWithParam<unsigned> {
 protected:
  double uniform(double low, double high) { return std::uniform_real_distribution{low, high}(random); }
  Bytes someSize() { return static_cast<Bytes>(20e6 * std::pow(uniform(0.001, 1), -1.2)); }

  Node someFolder(const std::string& name, int levels) {
    std::vector<Node> children;
    const int count = static_cast<int>(uniform(0, 9));
    for (int i = 0; i < count; ++i) {
      const std::string child = "item" + std::to_string(i);
      children.push_back(levels > 0 && uniform(0, 1) < 0.6 ? someFolder(child, levels - 1)
                                                           : file(child, someSize()));
    }
    return folder(name, std::move(children), {.unlisted = uniform(0, 1) < 0.5 ? someSize() / 4 : 0});
  }
  // The same folder some time later.
  Node changed(const Node& old) {
    if (!old.isDirectory) return file(old.name, uniform(0, 1) < 0.5 ? old.size : someSize());
    std::vector<Node> children;
    for (const Node& child : old.children) {
      if (uniform(0, 1) < 0.85) children.push_back(changed(child));
    }
    if (uniform(0, 1) < 0.3) children.push_back(someFolder("new", 1));
    return folder(old.name, std::move(children), {.unlisted = old.unlistedSize()});
  }

  std::mt19937 random{GetParam()};
};

TEST_P(PictureTest, boxesFillTheRoomInOrderAreNearlySquareAndMoveLittle) {
  std::vector<double> sizes(static_cast<std::size_t>(uniform(1, 60)));
  for (double& size : sizes) size = static_cast<double>(someSize());
  std::ranges::sort(sizes, std::greater{});
  const double total = std::accumulate(sizes.begin(), sizes.end(), 0.0);
  const auto boxes = squarified(sizes, screen);
  ASSERT_EQ(boxes.size(), sizes.size());
  double ratios = 0;
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    EXPECT_NEAR(boxes[i].area() / screen.area(), sizes[i] / total, inexact);
    EXPECT_TRUE(isInside(boxes[i], screen));
    // A later box is never both to the left of and above an earlier one.
    for (std::size_t j = 0; j < i; ++j) {
      EXPECT_LT(overlap(boxes[i], boxes[j]), inexact);
      EXPECT_TRUE(boxes[i].x >= boxes[j].x - inexact || boxes[i].y >= boxes[j].y - inexact);
    }
    ratios += std::max(boxes[i].width / boxes[i].height, boxes[i].height / boxes[i].width) * boxes[i].area();
  }
  if (sizes.size() > 4 && sizes[0] < total / 2) {
    EXPECT_LT(ratios / screen.area(), 2.5);
  }

  // Whichever box grows by one per thousand: on average all boxes move by less than a hundredth of the
  // diagonal.
  double moved = 0;
  for (double& grown : sizes) {
    const double before = std::exchange(grown, grown * 1.001);
    const auto later = squarified(sizes, screen);
    grown = before;
    for (std::size_t i = 0; i < boxes.size(); ++i)
      moved += std::hypot(later[i].x - boxes[i].x, later[i].y - boxes[i].y) * sizes[i] / total;
  }
  EXPECT_LT(moved / static_cast<double>(sizes.size()), 0.01 * std::hypot(screen.width, screen.height));
}

TEST_P(PictureTest, tilesLieInTheirFoldersShowEveryByteAndAreFoundAgain) {
  const Node root = someFolder("/home", 4);
  if (root.size == 0) return;
  const auto map = treeMap({.node = &root}, screen);
  const auto rows = icicle({.node = &root}, {.width = 420});
  for (const auto* tiles : {&map, &rows}) {
    std::map<std::size_t, Bytes> sums;
    for (std::size_t i = 0; i < tiles->size(); ++i) {
      const Tile& tile = (*tiles)[i];
      sums[tile.parent] += tile.size;
      if (tile.parent != Tile::none && tiles == &map) {
        EXPECT_TRUE(isInside(tile.box, (*tiles)[tile.parent].box));
      }
      for (std::size_t j = 0; j < i; ++j) {
        if ((*tiles)[j].parent == tile.parent) {
          EXPECT_LT(overlap(tile.box, (*tiles)[j].box), inexact);
        }
      }
      if (tile.node == nullptr || tile.kind == Tile::Kind::folder) continue;
      const std::string path = pathOf(*tiles, i, "/home");
      EXPECT_EQ(tileOf(*tiles, root, path.substr(6)), i) << path;
      EXPECT_EQ(tileOf(*tiles, root, path.substr(6) + "/not there"), i);
    }
    EXPECT_EQ(sums[Tile::none], root.size);
    for (const auto& [parent, sum] : sums) {
      if (parent != Tile::none && tiles == &map) {
        EXPECT_EQ(sum, (*tiles)[parent].size);
      }
    }
  }
}

TEST_P(PictureTest, theChangesAreTheDifferencesOfAllSizes) {
  const Snapshot from{.root = someFolder("/home", 3)};
  const Snapshot to{.root = changed(from.root)};
  const auto before = from.flattened();
  auto now = to.flattened();
  for (const auto& [path, size] : before) now.emplace(path, 0);
  std::size_t checked = 0;
  const std::function<void(const ChangeTree&, const std::string&)> check = [&](const ChangeTree& change,
                                                                               const std::string& path) {
    const bool isOld = before.contains(path);
    EXPECT_EQ(change.delta, now.at(path) - (isOld ? before.at(path) : 0)) << path;
    EXPECT_EQ(change.isNew, !isOld);
    EXPECT_EQ(change.isGone, change.size == 0 && !to.flattened().contains(path));
    if (std::abs(change.delta) >= ChangeTree::minimum) ++checked;
    for (const ChangeTree& child : change.children) check(child, Paths::join(path, child.name));
  };
  check(changeTree(from, to), "/home");
  // What is in a folder that is gone has no entry of its own.
  const auto isListed = [&](const std::string& path) {
    return to.nodeAt(path) != nullptr || to.nodeAt(path.substr(0, path.rfind('/'))) != nullptr;
  };
  std::size_t expected = 0;
  for (const auto& [path, size] : now) {
    const auto old = before.find(path);
    const Bytes delta = size - (old != before.end() ? old->second : 0);
    if (std::abs(delta) >= ChangeTree::minimum && isListed(path)) ++expected;
  }
  EXPECT_EQ(checked, expected);
}

INSTANTIATE_TEST_SUITE_P(Random, PictureTest, testing::Range(1U, 60U));

TEST(SpaceLineTest, marksGapsScansAndTheWarningLevel) {
  using namespace std::chrono_literals;
  const Date day{std::chrono::sys_days{std::chrono::year{2026} / 3 / 2}};
  const std::vector<FreeSpaceReading> readings{{day, 60, 1000}, {day + 10h, 50, 1000}, {day + 60h, 40, 1000}};
  const std::vector<Date> scans{day + 200h, day + 60h, day + 5h, day - 1h};
  const auto lineAt = [&](Bytes level) {
    return spaceLine(
        {.readings = readings, .now = {day + 100h, 30, 1000}, .scans = scans, .warningLevel = level});
  };
  const SpaceLine line = lineAt(8);
  std::vector<bool> gaps;
  for (const SpacePoint& point : line.points) gaps.push_back(point.isAfterGap);
  EXPECT_THAT(gaps, ElementsAre(false, false, true, true));
  ASSERT_EQ(line.scans.size(), 2U) << "the others are in the future, and before the line begins";
  EXPECT_EQ(line.scans[0].index, 1U);
  EXPECT_EQ(line.scans[1].point.free, 55);
  EXPECT_DOUBLE_EQ(line.scans[0].point.x, 0.6);
  EXPECT_GT(line.level.value_or(0), line.points.back().y);
  EXPECT_LT(line.points.front().y, line.points.back().y);
  EXPECT_FALSE(lineAt(7).level) << "30 is more than four times 7";
}

}  // namespace
}  // namespace spacemint
