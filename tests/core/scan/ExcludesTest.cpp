// What scans leave out. Git judges the same patterns.

#include "core/scan/Excludes.h"

#include "core/scan/ScanPlan.h"
#include "core/tree/TreeWalk.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <set>

namespace spacemint {
namespace {

using support::TemporaryFolder;
using testing::HasSubstr;
using Names = std::vector<std::string>;

class Random {
 public:
  explicit Random(unsigned seed) : random_(seed) {}

  std::size_t below(std::size_t limit) { return random_() % limit; }
  std::string of(const Names& choices) { return choices[below(choices.size())]; }
  std::string joined(const Names& choices, std::size_t most) {
    std::string text;
    for (std::size_t i = below(most) + 1; i > 0; --i) text += of(choices);
    return text;
  }

  std::string name() {
    return joined({"a", "b", "c", ".o", "!", "#", "[", "]", "-", "^", "*", "\\", " "}, 3);
  }
  std::string pattern() {
    const Names parts{
        "a",     "b",    "c",   ".o",  "*",   "?",           "[ab]",         "[!a]", "[^b-]", "[a-c]",
        "[]a]",  "\\*",  "\\[", "\\!", "\\ ", "[[:alpha:]]", "[[:punct:]c]", "[\\]", "[",     "[a-",
        "[!-b]", "[[:]", " ",   "**",  "-",   "\\"};
    std::string text = of({"", "", "", "!"}) + of({"", "", "/", "**/", "/**/"});
    text += joined(parts, 3);
    for (std::size_t i = below(3); i > 0 && text.find('/') != std::string::npos; --i) {
      text += "/" + (below(4) == 0 ? "**" : joined(parts, 2));
    }
    return text + of({"", "", "", "/", "/**", " "});
  }

 private:
  std::mt19937 random_;
};

// Fills a folder at random and returns the paths in it, from there on.
void fill(Random& random, const std::string& root, const std::string& below, int depth, Names& paths) {
  for (std::size_t i = 0; i < 6; ++i) {
    const std::string path = below + random.name();
    if (std::filesystem::exists(root + "/" + path)) continue;
    paths.push_back(path);
    if (depth == 3 || random.below(2) == 0) {
      support::writeText(root + "/" + path);
    } else {
      std::filesystem::create_directory(root + "/" + path);
      fill(random, root, path + "/", depth + 1, paths);
    }
  }
}

// What git does not ignore. The repository is elsewhere.
std::set<std::string> keptByGit(const TemporaryFolder& own, const std::string& root, const Names& patterns,
                                const Names& paths) {
  std::string text;
  for (const std::string& pattern : patterns) text += pattern + "\n";
  support::writeText(own / "patterns", text);
  text.clear();
  for (const std::string& path : paths) text += "./" + path + '\0';
  support::writeText(own / "paths", text);
  const std::string git = "cd " + root + " && GIT_CONFIG_GLOBAL=/dev/null git --git-dir=" + (own / "git") +
                          " --work-tree=. -c core.excludesFile=" + (own / "patterns");
  const int ended = std::system((git + " check-ignore --no-index -z --stdin <" + (own / "paths") + " >" +
                                 (own / "ignored") + " 2>" + (own / "problem"))
                                    .c_str());
  EXPECT_TRUE(WEXITSTATUS(ended) < 2) << support::readText(own / "problem");
  std::set<std::string> kept(paths.begin(), paths.end());
  const std::string ignored = support::readText(own / "ignored");
  for (std::size_t at = 0; at < ignored.size(); at = ignored.find('\0', at) + 1) {
    kept.erase(std::string{ignored.c_str() + at}.substr(2));
  }
  return kept;
}

std::set<std::string> keptByScan(const std::string& root, const Excludes& excludes) {
  const auto result = DiskScanner::scan({.root = root, .excludes = &excludes});
  std::set<std::string> kept;
  walkTree(result->root, [&](const std::string& path, const Node&) {
    if (path != root) kept.insert(path.substr(root.size() + 1));
  });
  return kept;
}

TEST(Excludes, leaveOutWhatGitIgnores) {
  if (std::system("git --version >/dev/null 2>&1") != 0) GTEST_SKIP() << "git is not installed";
  const TemporaryFolder own;
  ASSERT_EQ(std::system(("git init -q --bare " + (own / "git")).c_str()), 0);
  std::size_t left = 0;
  for (unsigned seed = 0; seed < 150; ++seed) {
    Random random{seed};
    const TemporaryFolder root;
    Names paths;
    fill(random, root.path(), "", 0, paths);
    Names ours;
    Names gits;
    while (gits.size() < 1 + seed % 5) {
      const std::string pattern = random.pattern();
      std::string absolute = pattern;
      const std::size_t start = pattern.starts_with('!') ? 1 : 0;
      if (pattern.substr(start).starts_with('/')) {
        absolute.insert(start, root.path());
      } else if (pattern.substr(0, pattern.find_last_not_of(" /")).contains('/')) {
        absolute.insert(start, root.path() + "/");  // or the name of the root might fit
      }
      if (!Excludes::compile({absolute}, "")) continue;
      gits.push_back(pattern);
      ours.push_back(absolute);
    }
    const auto kept = keptByScan(root.path(), Excludes::compile(ours, "").value());
    const auto wanted = keptByGit(own, root.path(), gits, paths);
    Names differing;
    std::ranges::set_symmetric_difference(kept, wanted, std::back_inserter(differing));
    ASSERT_EQ(differing, Names{}) << seed << testing::PrintToString(gits);
    left += paths.size() - kept.size();
  }
  EXPECT_GT(left, 1'000U);
}

TEST(Excludes, refuseWrongPatternsWithThePlaceOfTheFault) {
  const struct {
    const char* pattern;
    int character;
    const char* reason;
  } cases[] = {
      {"", 1, "names nothing"},         {"!", 1, "names nothing"},       {"/", 1, "names nothing"},
      {"#x", 1, "written “\\#”"},       {"a/b", 2, "begins with"},       {"äö[b", 3, "has no “]”"},
      {"/a//b", 4, "no path has"},      {"/a/../b", 4, "no path has"},   {"a\\", 2, "nothing follows"},
      {"~/x/[b-a]", 13, "ends before"}, {"[[:cat:]]", 2, "no set “cat”"}};
  for (const auto& [pattern, character, reason] : cases) {
    const auto compiled = Excludes::compile({"fine", pattern}, "/home/a");
    ASSERT_FALSE(compiled) << pattern;
    EXPECT_THAT(compiled.error().message,
                testing::AllOf(HasSubstr("character " + std::to_string(character) + ":"), HasSubstr(reason)));
    EXPECT_EQ(Excludes::usable({"fine", pattern}, "/home/a").patterns(), Names{"fine"});
  }
}

TEST(Excludes, followManyDoubleStarsAsOne) {
  std::string pattern;
  for (int i = 0; i < 1'000; ++i) pattern += "**/";
  const auto excludes = Excludes::compile({pattern + "a/b"}, "/h");
  ASSERT_TRUE(excludes);
  EXPECT_LE(excludes->at("/x/y/a").expected.size(), 3U);
  EXPECT_TRUE(excludes->leavesOutBelow("/", "/x/y/a/b/c", false));
  EXPECT_FALSE(excludes->leavesOutBelow("/", "/x/y/a/c/b", false));
}

TEST(Excludes, nameExactlyOnePathIfAsked) {
  for (const std::string path : {"/a b/c ", "/x/*?[!]\\ \\", "/ä/#1", "/!/~"}) {
    const auto excludes = Excludes::compile({Excludes::patternFor(path)}, "/h").value();
    EXPECT_TRUE(excludes.leavesOutBelow("/", path, true)) << path;
    EXPECT_FALSE(excludes.leavesOutBelow("/", path + "x", true)) << path;
    EXPECT_FALSE(excludes.leavesOutBelow(path, path, true)) << "who scans it wants it";
  }
}

// A scan knows the sizes of what it leaves out from the scans before, and compares itself with none of them.
TEST(Excludes, keepTheLastKnownSize) {
  const TemporaryFolder root;
  support::allocateFile(root / "a/b/big", 400'000);
  support::allocateFile(root / "a/image.iso", 100'000);
  support::allocateFile(root / "c", 10'000);
  const auto journal = hostEventJournal();
  std::optional<Snapshot> last;
  const auto scan = [&](const Names& patterns) {
    ScanPlan plan = ScanPlan::make(
        *journal,
        {.root = root.path(), .earlier = last, .excludes = Excludes::compile(patterns, "").value()});
    auto result = plan.scan({.root = root.path()});
    last = FinishedScan{.result = std::move(*result), .plan = plan}.snapshot();
    return plan.whyFull;
  };
  scan({});
  const Bytes all = last->root.size;
  EXPECT_EQ(scan({"b/", "*.iso"}), "the last scan left out other folders");
  const ExcludedSum sum = last->coverage.excludedBelow(root / "a");
  EXPECT_EQ(sum.items, 2);
  EXPECT_EQ(sum.unknown, 0);
  EXPECT_EQ(sum.size, all - last->root.size);
  EXPECT_EQ(last->coverage.excludedBelow(root / "c").items, 0);
  const auto before = last->coverage.leftOut;
  EXPECT_NE(scan({"b/", "*.iso"}), "the last scan left out other folders");
  EXPECT_EQ(last->coverage.leftOut, before);
  scan({"a"});
  EXPECT_EQ(last->coverage.excludedBelow(root.path()).unknown, 0);
  EXPECT_EQ(last->coverage.excludedBelow(root.path()).size, sum.size)
      << "with what was left out in it before";
}

}  // namespace
}  // namespace spacemint
