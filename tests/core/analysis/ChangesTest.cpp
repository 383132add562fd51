#include "core/analysis/Changes.h"

#include "core/wording/FindingText.h"
#include "support/TreeBuilder.h"

#include <gmock/gmock.h>

#include <map>
#include <random>
#include <set>
#include <tuple>

namespace spacemint {
namespace {

using support::file;
using support::folder;
using testing::ElementsAre;
using testing::IsEmpty;

Snapshot scanOf(Node root) {
  return {.root = std::move(root)};
}

std::vector<Growth> growth(const Node& from, const Node& to, Bytes minimum = 100, std::size_t limit = 10) {
  return Changes::growth({.from = scanOf(from), .to = scanOf(to), .minimum = minimum, .limit = limit});
}

// One folder under the root that grew by 1,000 in all, by `parts` of new files.
std::vector<std::string> namedFor(const std::vector<Bytes>& parts) {
  std::vector<Node> files;
  for (std::size_t i = 0; i < parts.size(); ++i) files.push_back(file("f" + std::to_string(i), parts[i]));
  const auto grown = growth(folder("/home/ann", {folder("x", {})}),
                            folder("/home/ann", {folder("x", std::move(files))}), 100);
  std::vector<std::string> paths;
  for (const Growth& each : grown) paths.push_back(each.path);
  return paths;
}

TEST(Changes, descendsWhileOneChildExplainsSixTenthsOfTheGrowth) {
  EXPECT_THAT(namedFor({600, 400}), ElementsAre("/home/ann/x/f0", "/home/ann/x/f1"));
  EXPECT_THAT(namedFor({600, 350, 50}), ElementsAre("/home/ann/x/f0", "/home/ann/x/f1"));
  EXPECT_THAT(namedFor({599, 401}), ElementsAre("/home/ann/x"));
  EXPECT_THAT(namedFor({500, 500}), ElementsAre("/home/ann/x"));
}

TEST(Changes, comparesNothingWhenTheRootsDifferOrTheWholeGrewByLess) {
  const Node small = folder("/home/ann", {});
  EXPECT_THAT(growth(folder("/home/bob", {}), folder("/home/ann", {file("f", 900)})), IsEmpty());
  EXPECT_THAT(growth(folder("/home/ann", {file("gone", 850)}), folder("/home/ann", {file("f", 900)})),
              IsEmpty());
  EXPECT_THAT(growth(small, folder("/home/ann", {file("f", 99)})), IsEmpty());
  EXPECT_EQ(growth(small, folder("/home/ann", {file("f", 100)})).size(), 1U);
  EXPECT_THAT(growth(small, folder("/home/ann", {file("f", 100)}), 100, 0), IsEmpty());
}

TEST(Changes, keepsTheOrderOfTheTreeAmongEqualGrowthAndCutsAfterSorting) {
  const Node before = folder("/h", {folder("a", {}), folder("b", {})});
  const Node after =
      folder("/h", {folder("a", {file("1", 300)}), folder("b", {file("3", 300), file("4", 900)})});
  const auto grown = growth(before, after, 100, 2);
  ASSERT_EQ(grown.size(), 2U);
  EXPECT_EQ(grown[0].path, "/h/b/4");
  EXPECT_EQ(grown[1].path, "/h/b/3");
}

TEST(Changes, findsNamesThatAreSpeltDifferently) {
  const std::string composed = "caf\u00e9";
  const std::string decomposed = "cafe\u0301";
  const auto grown = growth(folder("/h", {file(composed, 400)}), folder("/h", {file(decomposed, 900)}));
  EXPECT_THAT(grown, ElementsAre(Growth{"/h/" + decomposed, 500, 900, false, false}));
  // Both spellings side by side are two files, each compared with itself.
  const Node both = folder("/h", {file(composed, 400), file(decomposed, 300)});
  EXPECT_THAT(growth(both, folder("/h", {file(composed, 400), file(decomposed, 500)})),
              ElementsAre(Growth{"/h/" + decomposed, 200, 500, false, false}));
}

// Files by path. The names of files begin with "f", those of folders with "d".
using Disk = std::map<std::string, Bytes>;

bool isBelow(const std::string& path, const std::string& folder) {
  return path == folder || path.starts_with(folder + "/");
}

bool has(const Disk& disk, const std::string& path) {
  return path == "/h" ||
         std::ranges::any_of(disk, [&](const auto& each) { return isBelow(each.first, path); });
}

Bytes sizeOn(const Disk& disk, const std::string& path) {
  Bytes size = 0;
  for (const auto& [each, bytes] : disk) size += isBelow(each, path) ? bytes : 0;
  return size;
}

std::set<std::string> childrenOn(const Disk& disk, const std::string& path) {
  std::set<std::string> children;
  for (const auto& [each, bytes] : disk) {
    if (each.starts_with(path + "/")) children.insert(each.substr(0, each.find('/', path.size() + 1)));
  }
  return children;
}

bool isFolder(const std::string& path) {
  return path[path.rfind('/') + 1] != 'f';
}

Node treeOf(const Disk& disk, const std::string& path, const std::string& name) {
  if (!isFolder(path)) return file(name, disk.at(path));
  std::vector<Node> children;
  for (const std::string& child : childrenOn(disk, path))
    children.push_back(treeOf(disk, child, child.substr(path.size() + 1)));
  return folder(name, std::move(children));
}

bool existsStill(const std::string& path) {
  return path.size() % 3 == 0;
}

// The rules of growth and shrinkage once more, on files in place of trees.
struct Model {
  const Disk& before;
  const Disk& now;

  Bytes grown(const std::string& path) const { return sizeOn(now, path) - sizeOn(before, path); }

  Bytes largest(const Disk& disk, const std::string& path, Bytes sign) const {
    Bytes most = 0;
    for (const std::string& child : childrenOn(disk, path)) most = std::max(most, sign * grown(child));
    return most;
  }
  bool isSpread(const Disk& disk, const std::string& path, Bytes sign) const {
    return isFolder(path) &&
           static_cast<double>(largest(disk, path, sign)) < 0.6 * static_cast<double>(sign * grown(path));
  }

  void growth(const std::string& path, Bytes minimum, bool unfolds, std::vector<Growth>& found) const {
    if (isFolder(path) && !isSpread(now, path, 1)) {
      for (const std::string& child : childrenOn(now, path))
        if (grown(child) >= minimum) growth(child, minimum, unfolds, found);
      return;
    }
    found.push_back({path, grown(path), sizeOn(now, path), isFolder(path), !has(before, path)});
    const Bytes part = std::max<Bytes>(1, grown(path) / 20);
    for (const std::string& child : childrenOn(now, path))
      if (unfolds && grown(child) >= part) growth(child, part, false, found.back().inside);
  }

  void shrinkage(const std::string& path, Bytes minimum, std::vector<Shrinkage>& found) const {
    if (sizeOn(before, path) < minimum) return;
    const Bytes lost = -grown(path);
    const bool remains = has(now, path);
    if (isFolder(path) && remains && (lost < minimum || !isSpread(before, path, -1))) {
      for (const std::string& child : childrenOn(before, path)) shrinkage(child, minimum, found);
    } else if (lost >= minimum) {
      found.push_back({path, lost, sizeOn(now, path), isFolder(path), !remains && !existsStill(path)});
    }
  }
};

// In one order, whatever the order of equal changes.
template <class Change>
void sortChanges(std::vector<Change>& changes) {
  std::ranges::sort(changes, {}, [](const Change& each) { return std::pair{-each.delta, each.path}; });
}

class RandomHistory {
 public:
  explicit RandomHistory(unsigned seed) : random_(seed) {}

  void change(Disk& disk, int times) {
    for (int i = 0; i < times; ++i) {
      const auto any =
          disk.empty() ? disk.end() : std::next(disk.begin(), below(static_cast<int>(disk.size())));
      const int kind = any == disk.end() ? 0 : below(8);
      if (kind < 3) {
        disk[path()] = 1 + below(2'000);
      } else if (kind < 5) {
        any->second += below(1'500);
      } else if (kind < 7) {
        any->second = 1 + below(static_cast<int>(any->second));
      } else {
        std::string gone = any->first;  // the file, or a folder above it
        for (int up = below(3); up > 0 && gone.rfind('/') > 2; --up) gone.resize(gone.rfind('/'));
        std::erase_if(disk, [&](const auto& each) { return isBelow(each.first, gone); });
      }
    }
  }

 private:
  int below(int limit) { return std::uniform_int_distribution{0, limit - 1}(random_); }
  std::string path() {
    std::string path = "/h";
    for (int depth = below(4); depth > 0; --depth) path += "/d" + std::to_string(below(3));
    return path + "/f" + std::to_string(below(4));
  }

  std::mt19937 random_;
};

TEST(Changes, saysOfRandomHistoriesWhatAModelOfTheirFilesSays) {
  std::size_t grew = 0, unfolded = 0, shrank = 0, vanished = 0;
  for (unsigned round = 0; round < 1'000; ++round) {
    RandomHistory history{round};
    Disk before;
    history.change(before, 40);
    Disk now = before;
    history.change(now, 1 + static_cast<int>(round) % 40);
    const Snapshot from = scanOf(treeOf(before, "/h", "/h"));
    const Snapshot to = scanOf(treeOf(now, "/h", "/h"));
    const Changes::GrowthArguments arguments{.from = from, .to = to, .minimum = 200, .limit = 1'000};
    const Model model{before, now};

    std::vector<Growth> grown;
    if (model.grown("/h") >= 200) model.growth("/h", 200, true, grown);
    auto answer = Changes::growth(arguments);
    for (auto* list : {&grown, &answer}) {
      sortChanges(*list);
      for (Growth& each : *list) {
        sortChanges(each.inside);
        unfolded += each.inside.size();
        // Which of equal ones are left out is open.
        if (each.inside.size() >= Changes::insideLimit) each.inside.clear();
      }
    }
    ASSERT_EQ(answer, grown) << "round " << round;

    std::vector<Shrinkage> lost;
    model.shrinkage("/h", 200, lost);
    auto lostAnswer = Changes::shrinkage(arguments, existsStill);
    sortChanges(lost);
    sortChanges(lostAnswer);
    ASSERT_EQ(lostAnswer, lost) << "round " << round;
    grew += grown.size();
    shrank += lost.size();
    vanished += static_cast<std::size_t>(std::ranges::count(lost, true, &Shrinkage::isGone));
  }
  EXPECT_THAT((std::vector{grew, unfolded, shrank, vanished}), testing::Each(testing::Gt(500U)));
}

// What comes into sight has not grown, and free space that no folder explains went elsewhere.
TEST(Changes, countOnlyWhatBothScansCouldSee) {
  constexpr Bytes MB = 1'000'000;
  const auto scan = [](std::vector<Node> children, Bytes size, Bytes free, std::vector<std::string> unread) {
    Snapshot result = scanOf(folder("/home/ann", std::move(children)));
    result.volumeFree = free;
    result.coverage.places = {
        {.place = {.mountPoint = "/home", .root = "/", .fileSystem = "ext4"}, .size = size}};
    result.coverage.unread.paths = std::move(unread);
    return result;
  };
  const auto disk = [&] { return CoveredPlace{{.mountPoint = "/home/ann/disk", .pool = 7}, 900 * MB}; };
  const Snapshot before = scan({file("f", 100 * MB)}, 100 * MB, 5'000 * MB, {"/home/ann/x/locked"});
  Snapshot after = scan({folder("x", {folder("locked", {file("g", 700 * MB)})}), file("f", 400 * MB)},
                        1'100 * MB, 3'000 * MB, {});
  after.coverage.places.push_back(disk());
  after.root.children.push_back(folder("disk", {file("h", 900 * MB)}));
  after.root.size += 900 * MB;

  const auto grown = Changes::growth({.from = before, .to = after, .minimum = 100 * MB, .limit = 9});
  EXPECT_THAT(grown, ElementsAre(Growth{"/home/ann/f", 300 * MB, 400 * MB, false, false}));
  const auto shrunk = Changes::shrinkage({.from = after, .to = before, .minimum = 100 * MB, .limit = 9},
                                         [](const std::string&) { return false; });
  EXPECT_THAT(shrunk, ElementsAre(Shrinkage{"/home/ann/f", 300 * MB, 100 * MB, false, false}));
  const auto textOf = [](const Snapshot& from, const Snapshot& to) {
    return FindingText::freeChange(Changes::spaceChange(from, to, "/home/ann").value(), "/home/ann", "en_US");
  };
  EXPECT_EQ(textOf(before, after),
            "Free space dropped by 2 GB, from 5 GB to 3 GB: 300 MB in your home folder, 1.7 GB elsewhere");
  EXPECT_EQ(
      textOf(after, before),
      "Free space grew by 2 GB, from 3 GB to 5 GB: 300 MB less in your home folder, 1.7 GB less elsewhere");
  after.volumeFree = 4'700 * MB;
  EXPECT_EQ(textOf(before, after), "Free space dropped by 300 MB, from 5 GB to 4.7 GB");
  after.volumeFree = 4'950 * MB;
  EXPECT_EQ(textOf(before, after),
            "Free space is as it was: 300 MB in your home folder, 250 MB less elsewhere");
  after.coverage.places = {};  // a scan that does not say what it covers
  after.volumeFree = 3'000 * MB;
  EXPECT_EQ(textOf(before, after), "Free space dropped by 2 GB, from 5 GB to 3 GB");
}

}  // namespace
}  // namespace spacemint
