#include "core/tree/Snapshot.h"

#include "core/analysis/Changes.h"
#include "core/tree/Paths.h"
#include "core/wording/FindingText.h"
#include "support/TreeBuilder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <random>
#include <tuple>

namespace spacemint {
namespace {

using support::file;
using support::folder;
using support::names;
using Names = std::vector<std::string>;

constexpr Bytes mega = 1'000'000;

Snapshot snapshotOf(Node root, Bytes minNodeSize = 20 * mega) {
  Snapshot snapshot{.root = std::move(root), .minNodeSize = minNodeSize};
  snapshot.fileCount = snapshot.root.fileCount;
  return snapshot;
}

// A home with 300 MB of which 10 MB are in files too small to be listed.
Snapshot home() {
  return snapshotOf(
      folder("/home/ann",
             {folder("Movies", {file("b.mov", 90 * mega), file("a.mov", 90 * mega)}),
              folder("Code", {folder("app", {file("core", 60 * mega)})}), file("disk.img", 50 * mega)},
             {.unlisted = 10 * mega, .unlistedFiles = 3}));
}

TEST(Snapshot, splitsAPathIntoNamesBelowTheRoot) {
  const std::tuple<const char*, const char*, std::optional<Names>> cases[]{
      {"/home/ann", "/home/ann", Names{}},
      {"/home/ann", "/home/ann/", Names{}},
      {"/home/ann", "/home/ann/a//b/", Names{"a", "b"}},
      {"/home/ann", "/home/annex/y", std::nullopt},
      {"/home/ann", "/home", std::nullopt},
      {"/home/ann", "relative", std::nullopt},
      {"/", "/home/ann", Names{"home", "ann"}},
      {"/", "/", Names{}},
      {"/home/ann/", "/home/ann/x", Names{"x"}},
      {"/home/ann/", "/home/ann", Names{}},
      {"/System/Volumes/Data", "/Users/ann/Movies", Names{"Users", "ann", "Movies"}},
      {"/System/Volumes/Data", "/System/Volumes/Data/Users", Names{"Users"}},
      {"/System/Volumes/Data", "/", Names{}},
      {"/home/ren\u00e9", "/home/rene\u0301/x", Names{"x"}},
  };
  for (const auto& [root, path, names] : cases) {
    const Snapshot snapshot = snapshotOf(folder(root, {}));
    EXPECT_EQ(snapshot.components(path), names) << root << ' ' << path;
  }
}

TEST(Snapshot, findsNodesByThePathPeopleUse) {
  const Snapshot whole = snapshotOf(
      folder("/System/Volumes/Data", {folder("Users", {folder("ann", {file("caf\u00e9", 30 * mega)})})}));
  EXPECT_EQ(whole.nodeAt("/Users/ann/cafe\u0301")->size, 30 * mega);
  EXPECT_EQ(whole.nodeAt("/Users/bob"), nullptr);
  EXPECT_EQ(whole.nodeAt("/System/Volumes/Data"), &whole.root);
  EXPECT_EQ(whole.resolve("/Users"), "/System/Volumes/Data/Users");
  EXPECT_EQ(home().resolve("/Users"), "/Users");

  // Where the disk holds both spellings, each path finds its own.
  const Snapshot both = snapshotOf(folder("/r", {file("e\u0301", 40 * mega), file("\u00e9", 30 * mega)}));
  EXPECT_EQ(both.nodeAt("/r/\u00e9")->size, 30 * mega);
  EXPECT_EQ(both.nodeAt("/r/e\u0301")->size, 40 * mega);
}

TEST(Snapshot, listsEveryNodeAndTheLargestFiles) {
  const Snapshot snapshot = home();
  const auto sizes = snapshot.flattened();
  EXPECT_EQ(sizes.size(), 8U);
  EXPECT_EQ(sizes.at("/home/ann"), 300 * mega);
  EXPECT_EQ(sizes.at("/home/ann/Code/app/core"), 60 * mega);
  EXPECT_EQ(snapshotOf(folder("/", {file("x", mega)})).flattened().count("/x"), 1U);

  const auto largest = snapshot.largestFiles(3);
  ASSERT_EQ(largest.size(), 3U);
  EXPECT_EQ(largest[0].path, "/home/ann/Movies/b.mov");  // met first among equals
  EXPECT_EQ(largest[1].name(), "a.mov");
  EXPECT_EQ(largest[2].id(), "/home/ann/Code/app/core");
  EXPECT_TRUE(snapshot.largestFiles(0).empty());
  EXPECT_EQ(snapshot.largestFiles(99).size(), 4U);
}

TEST(Snapshot, replacingKeepsEveryTotalTrue) {
  Snapshot snapshot = home();
  Node measured = folder("/home/ann/Code", {file("core", 200 * mega)}, {.unlistedFiles = 6});
  EXPECT_TRUE(snapshot.replace("/home/ann/Code", measured));
  EXPECT_EQ(snapshot.root.size, 440 * mega);
  EXPECT_EQ(snapshot.root.fileCount, 13);
  EXPECT_EQ(snapshot.fileCount, 13);
  EXPECT_EQ(names(snapshot.root), (Names{"Code", "Movies", "disk.img"}));
  EXPECT_EQ(snapshot.nodeAt("/home/ann/Code/core")->size, 200 * mega);

  EXPECT_TRUE(snapshot.replace("/home/ann/Code", folder("x", {}, {.unlisted = 1'000})));
  EXPECT_EQ(snapshot.nodeAt("/home/ann/Code"), nullptr);
  EXPECT_EQ(snapshot.root.size, 240 * mega + 1'000);
  EXPECT_EQ(snapshot.root.unlistedSize(), 10 * mega + 1'000);

  const Snapshot before = snapshot;
  EXPECT_FALSE(snapshot.replace("/home/ann/Nothing", measured));
  EXPECT_FALSE(snapshot.replace("/home/ann", measured));
  EXPECT_FALSE(snapshot.replace("/elsewhere", measured));
  EXPECT_EQ(snapshot, before);
}

TEST(Snapshot, upsertingInsertsOnlyWhatIsLargeEnoughUnderAKnownFolder) {
  Snapshot snapshot = home();
  const Snapshot before = snapshot;
  EXPECT_FALSE(snapshot.upsert("/home/ann/small", file("small", 20 * mega - 1)));
  EXPECT_FALSE(snapshot.upsert("/home/ann/none/new", file("new", 30 * mega)));
  EXPECT_FALSE(snapshot.upsert("/home/ann", file("new", 30 * mega)));
  EXPECT_EQ(snapshot, before);

  EXPECT_TRUE(snapshot.upsert("/home/ann/Code/new", folder("/tmp/measured", {file("f", 70 * mega)})));
  EXPECT_EQ(snapshot.root.size, 370 * mega);
  EXPECT_EQ(snapshot.fileCount, before.fileCount + 1);
  EXPECT_EQ(names(*snapshot.nodeAt("/home/ann/Code")), (Names{"new", "app"}));
  EXPECT_TRUE(snapshot.upsert("/home/ann/Code/new", folder("new", {file("f", 30 * mega)})));
  EXPECT_EQ(names(*snapshot.nodeAt("/home/ann/Code")), (Names{"app", "new"}));
}

TEST(Snapshot, removingTakesAFolderWithItsFilesAndAFileAsOne) {
  Snapshot snapshot = home();
  EXPECT_EQ(snapshot.fileCount, 7);
  EXPECT_TRUE(snapshot.remove("/home/ann/Movies/b.mov"));
  EXPECT_EQ(snapshot.nodeAt("/home/ann/Movies")->fileCount, 1);
  EXPECT_EQ(snapshot.root.size, 210 * mega);
  EXPECT_EQ(names(snapshot.root), (Names{"Movies", "Code", "disk.img"}));
  EXPECT_TRUE(snapshot.remove("/home/ann/Code"));
  EXPECT_EQ(snapshot.fileCount, 5);
  EXPECT_FALSE(snapshot.remove("/home/ann/Code"));
  EXPECT_FALSE(snapshot.remove("/home/ann"));
}

TEST(Snapshot, editsKeepTheSpellingThatIsOnTheDisk) {
  Snapshot snapshot = snapshotOf(folder("/r", {file("caf\u00e9", 30 * mega)}));
  EXPECT_TRUE(snapshot.replace("/r/cafe\u0301", file("x", 40 * mega)));
  EXPECT_EQ(names(snapshot.root), Names{"caf\u00e9"});
}

TEST(Snapshot, countsOnWithAnySizesOfAStoredScan) {
  constexpr Bytes most = std::numeric_limits<Bytes>::max();
  // A folder that counts for less than what is in it, and parts that are more than any sum.
  Node root{.name = "/home/ann", .size = 5, .isDirectory = true, .fileCount = 1};
  root.children = {{.name = "a", .size = most}, {.name = "b", .size = most}, {.name = "c", .size = 1}};
  Snapshot snapshot = snapshotOf(root, 0);
  EXPECT_TRUE(snapshot.remove("/home/ann/a"));
  EXPECT_TRUE(snapshot.remove("/home/ann/b"));
  EXPECT_EQ(snapshot.root.size, 0);
  EXPECT_EQ(snapshot.root.fileCount, 0);
  EXPECT_EQ(snapshot.fileCount, 0);
  EXPECT_TRUE(snapshot.upsert("/home/ann/d", file("d", most)));
  EXPECT_TRUE(snapshot.replace("/home/ann/c", file("c", most)));
  EXPECT_EQ(snapshot.root.size, most);
  EXPECT_EQ(snapshot.root.unlistedSize(), 0);
}

TEST(Paths, translateBetweenTheStoredAndTheShownForm) {
  EXPECT_EQ(Paths::join("/", "Users"), "/Users");
  EXPECT_EQ(Paths::join("/Users/", "ann"), "/Users/ann");
  EXPECT_EQ(Paths::join("/Users", "ann"), "/Users/ann");

  EXPECT_EQ(Paths::logical("/System/Volumes/Data"), "/");
  EXPECT_EQ(Paths::logical("/System/Volumes/Data/Users/ann"), "/Users/ann");
  EXPECT_EQ(Paths::logical("/home/ann"), "/home/ann");

  const char* home = "/Users/ann";
  EXPECT_EQ(Paths::display("/System/Volumes/Data/Users/ann/Downloads", home), "~/Downloads");
  EXPECT_EQ(Paths::display("/Users/ann", home), "~");
  EXPECT_EQ(Paths::display("/Users/annex", home), "/Users/annex");
  EXPECT_EQ(Paths::display("/Users/ren\u00e9/x", "/Users/rene\u0301"), "~/x");
  EXPECT_EQ(Paths::display("/etc", "/"), "~/etc");

  EXPECT_EQ(Paths::lastComponent("/a/b/"), "b");
  EXPECT_EQ(Paths::lastComponent("/"), "/");
}

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
  after.coverage.places = {};  // a scan that does not say what it covers
  after.volumeFree = 3'000 * MB;
  EXPECT_EQ(textOf(before, after), "Free space dropped by 2 GB, from 5 GB to 3 GB");
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

class RandomTrees {
 public:
  Node folderOf(const std::string& name, int depth) {
    std::vector<Node> children;
    for (int i = 0; i < 5; ++i) {
      const std::string childName{static_cast<char>('a' + i)};
      switch (below(depth > 0 ? 4 : 2)) {
        case 0:
          break;
        case 1:
          children.push_back(file(childName, below(2'000)));
          break;
        default:
          children.push_back(folderOf(childName, depth - 1));
          break;
      }
    }
    return folder(name, std::move(children), {.unlisted = below(300)});
  }

 private:
  int below(int limit) { return std::uniform_int_distribution{0, limit - 1}(random_); }

  std::mt19937 random_{20'261'125};
};

TEST(Changes, saysOfRandomTreesOnlyWhatIsTrueAndNothingTwice) {
  RandomTrees trees;
  std::size_t found = 0;
  for (int round = 0; round < 500; ++round) {
    const Snapshot from = scanOf(trees.folderOf("/h", 4));
    const Snapshot to = scanOf(trees.folderOf("/h", 4));
    const auto grown = Changes::growth({.from = from, .to = to, .minimum = 200, .limit = 1'000});
    const auto old = from.flattened();
    for (const Growth& each : grown) {
      const auto before = old.find(each.path);
      ASSERT_EQ(each.isNew, before == old.end());
      const Node& now = *to.nodeAt(each.path);
      ASSERT_EQ(each.delta, now.size - (each.isNew ? 0 : before->second)) << each.path;
      ASSERT_EQ(std::pair(each.size, each.isDirectory), std::pair(now.size, now.isDirectory)) << each.path;
      const bool containsAnother = std::ranges::any_of(
          grown, [&](const Growth& other) { return other.path.starts_with(each.path + "/"); });
      ASSERT_FALSE(containsAnother) << each.path;
    }
    found += grown.size();
  }
  EXPECT_GT(found, 1'000U);
}

}  // namespace
}  // namespace spacemint
