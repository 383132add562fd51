#include "core/analysis/Changes.h"

#include "support/TreeBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

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

TEST(Changes, tellsWhatIsNewAndWhatGrew) {
  const Node before = folder("/", {folder("Users", {file("log", 100)}), file("gone", 5'000)});
  const Node after = folder("/", {folder("Users", {file("log", 9'000), file("new", 1'000)})});
  EXPECT_THAT(growth(before, after), ElementsAre(Growth{"/Users/log", 8'900, 9'000, false, false},
                                                 Growth{"/Users/new", 1'000, 1'000, false, true}));
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
      ASSERT_EQ(each.delta, to.nodeAt(each.path)->size - (each.isNew ? 0 : before->second)) << each.path;
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
