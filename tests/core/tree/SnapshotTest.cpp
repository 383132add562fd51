#include "core/tree/Snapshot.h"

#include "core/tree/Paths.h"
#include "support/TreeBuilder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <tuple>

namespace spacemint {
namespace {

using support::file;
using support::folder;
using support::names;
using Names = std::vector<std::string>;

constexpr Bytes million = 1'000'000;

Snapshot snapshotOf(Node root, Bytes minNodeSize = 20 * million) {
  Snapshot snapshot{.root = std::move(root), .minNodeSize = minNodeSize};
  snapshot.fileCount = snapshot.root.fileCount;
  return snapshot;
}

// A home with 300 MB of which 10 MB are in files too small to be listed.
Snapshot home() {
  return snapshotOf(
      folder("/home/ann",
             {folder("Movies", {file("b.mov", 90 * million), file("a.mov", 90 * million)}),
              folder("Code", {folder("app", {file("core", 60 * million)})}), file("disk.img", 50 * million)},
             {.unlisted = 10 * million, .unlistedFiles = 3}));
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
      folder("/System/Volumes/Data", {folder("Users", {folder("ann", {file("caf\u00e9", 30 * million)})})}));
  EXPECT_EQ(whole.nodeAt("/Users/ann/cafe\u0301")->size, 30 * million);
  EXPECT_EQ(whole.nodeAt("/Users/bob"), nullptr);
  EXPECT_EQ(whole.nodeAt("/System/Volumes/Data"), &whole.root);
  EXPECT_EQ(whole.resolve("/Users"), "/System/Volumes/Data/Users");
  EXPECT_EQ(home().resolve("/Users"), "/Users");

  // Where the disk holds both spellings, each path finds its own.
  const Snapshot both =
      snapshotOf(folder("/r", {file("e\u0301", 40 * million), file("\u00e9", 30 * million)}));
  EXPECT_EQ(both.nodeAt("/r/\u00e9")->size, 30 * million);
  EXPECT_EQ(both.nodeAt("/r/e\u0301")->size, 40 * million);
}

TEST(Snapshot, listsEveryNodeAndTheLargestFiles) {
  const Snapshot snapshot = home();
  const auto sizes = snapshot.flattened();
  EXPECT_EQ(sizes.size(), 8U);
  EXPECT_EQ(sizes.at("/home/ann"), 300 * million);
  EXPECT_EQ(sizes.at("/home/ann/Code/app/core"), 60 * million);
  EXPECT_EQ(snapshotOf(folder("/", {file("x", million)})).flattened().count("/x"), 1U);

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
  Node measured = folder("/home/ann/Code", {file("core", 200 * million)}, {.unlistedFiles = 6});
  EXPECT_TRUE(snapshot.replace("/home/ann/Code", measured));
  EXPECT_EQ(snapshot.root.size, 440 * million);
  EXPECT_EQ(snapshot.root.fileCount, 13);
  EXPECT_EQ(snapshot.fileCount, 13);
  EXPECT_EQ(names(snapshot.root), (Names{"Code", "Movies", "disk.img"}));
  EXPECT_EQ(snapshot.nodeAt("/home/ann/Code/core")->size, 200 * million);

  EXPECT_TRUE(snapshot.replace("/home/ann/Code", folder("x", {}, {.unlisted = 1'000})));
  EXPECT_EQ(snapshot.nodeAt("/home/ann/Code"), nullptr);
  EXPECT_EQ(snapshot.root.size, 240 * million + 1'000);
  EXPECT_EQ(snapshot.root.unlistedSize(), 10 * million + 1'000);

  const Snapshot before = snapshot;
  EXPECT_FALSE(snapshot.replace("/home/ann/Nothing", measured));
  EXPECT_FALSE(snapshot.replace("/home/ann", measured));
  EXPECT_FALSE(snapshot.replace("/elsewhere", measured));
  EXPECT_EQ(snapshot, before);
}

TEST(Snapshot, upsertingInsertsOnlyWhatIsLargeEnoughUnderAKnownFolder) {
  Snapshot snapshot = home();
  const Snapshot before = snapshot;
  EXPECT_FALSE(snapshot.upsert("/home/ann/small", file("small", 20 * million - 1)));
  EXPECT_FALSE(snapshot.upsert("/home/ann/none/new", file("new", 30 * million)));
  EXPECT_FALSE(snapshot.upsert("/home/ann", file("new", 30 * million)));
  EXPECT_EQ(snapshot, before);

  EXPECT_TRUE(snapshot.upsert("/home/ann/Code/new", folder("/tmp/measured", {file("f", 70 * million)})));
  EXPECT_EQ(snapshot.root.size, 370 * million);
  EXPECT_EQ(snapshot.fileCount, before.fileCount + 1);
  EXPECT_EQ(names(*snapshot.nodeAt("/home/ann/Code")), (Names{"new", "app"}));
  EXPECT_TRUE(snapshot.upsert("/home/ann/Code/new", folder("new", {file("f", 30 * million)})));
  EXPECT_EQ(names(*snapshot.nodeAt("/home/ann/Code")), (Names{"app", "new"}));
}

TEST(Snapshot, removingTakesAFolderWithItsFilesAndAFileAsOne) {
  Snapshot snapshot = home();
  EXPECT_EQ(snapshot.fileCount, 7);
  EXPECT_TRUE(snapshot.remove("/home/ann/Movies/b.mov"));
  EXPECT_EQ(snapshot.nodeAt("/home/ann/Movies")->fileCount, 1);
  EXPECT_EQ(snapshot.root.size, 210 * million);
  EXPECT_EQ(names(snapshot.root), (Names{"Movies", "Code", "disk.img"}));
  EXPECT_TRUE(snapshot.remove("/home/ann/Code"));
  EXPECT_EQ(snapshot.fileCount, 5);
  EXPECT_FALSE(snapshot.remove("/home/ann/Code"));
  EXPECT_FALSE(snapshot.remove("/home/ann"));
}

TEST(Snapshot, editsKeepTheSpellingThatIsOnTheDisk) {
  Snapshot snapshot = snapshotOf(folder("/r", {file("caf\u00e9", 30 * million)}));
  EXPECT_TRUE(snapshot.replace("/r/cafe\u0301", file("x", 40 * million)));
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

  for (const auto& [path, parent] : {std::pair{"/a/b/c", "/a/b"}, {"/a/b/", "/a"}, {"/a", "/"}, {"/", "/"}})
    EXPECT_EQ(Paths::parent(path), parent) << path;
}

}  // namespace
}  // namespace spacemint
