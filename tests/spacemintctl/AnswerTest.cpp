#include "spacemintctl/Answer.h"

#include "spacemintctl/Console.h"
#include "spacemintctl/ProgressLine.h"
#include "support/TreeBuilder.h"

#include <gtest/gtest.h>

namespace spacemint::ctl {
namespace {

using std::chrono::seconds;
using support::file;
using support::folder;

const Wording english{.home = "/home/ann", .locale = "en_US"};

TEST(Printable, takesTheSenseOutOfWhatATerminalObeys) {
  EXPECT_EQ(printable("plain \u00e9"), "plain \u00e9");
  EXPECT_EQ(printable("a\nb\x1b[2J\x7f"), "a\ufffdb\ufffd[2J\ufffd");
  EXPECT_EQ(printable("\xc2\x9b"), "\ufffd");  // an escape sequence in one character
  EXPECT_EQ(printable("\xff"), "\ufffd");
}

TEST(LargestFolders, nameEachPlaceOnce) {
  const Node root =
      folder("/r", {folder("wrapper", {folder("inner", {file("f", 90)}), folder("other", {file("f", 20)})}),
                    folder("mixed", {folder("half", {file("g", 80)}), folder("rest", {file("h", 75)})}),
                    folder("deep", {folder("a", {folder("b", {file("f", 60)})}, {.unlisted = 39})}),
                    folder("asFar", {folder("c", {file("f", 59)})}, {.unlisted = 41}), file("big", 500)});
  std::vector<std::string> paths;
  for (const FolderItem& item : largestFolders(root, 10)) paths.push_back(item.path);
  EXPECT_EQ(paths, (std::vector<std::string>{"/r/mixed", "/r/asFar", "/r/wrapper/inner", "/r/deep/a/b",
                                             "/r/wrapper/other"}));
  EXPECT_EQ(largestFolders(root, 1).size(), 1U);
}

TEST(Progress, saysHowMuchIsDoneWhereTheWholeIsKnown) {
  struct Case {
    DiskScanner::Progress progress;
    std::optional<Bytes> expected;
    double elapsed;
    const char* text;
  };
  const Case cases[]{
      {{1'234, 1'500'000}, std::nullopt, 9, "1,234 files, 1.5 MB"},
      {{1, 25}, 100, 10, "1 file, 25 bytes, 25 %, 30 s left"},
      {{1, 25}, 100, 100, "1 file, 25 bytes, 25 %, 5 min left"},
      {{1, 25}, 100, 3'600, "1 file, 25 bytes, 25 %, 3 h 0 min left"},
      {{1, 150}, 100, 10, "1 file, 150 bytes, 99 %"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(progressText(c.progress, c.expected, std::chrono::duration<double>(c.elapsed), "en_US"),
              c.text);
  }
}

TEST(UnreadNote, countsAndNamesTheFirstFew) {
  EXPECT_EQ(unreadNote({}, english), "");
  EXPECT_EQ(unreadNote({.folders = 1, .paths = {"/home/ann/a\nb"}}, english),
            "1 folder could not be read; sizes are at least what is shown\n  ~/a\ufffdb");
  EXPECT_EQ(
      unreadNote({.folders = 3, .entries = 1'000, .paths = {"/a", "/b", "/c", "/d", "/e", "/f"}}, english),
      "3 folders and 1,000 entries could not be read; sizes are at least what is shown\n"
      "  /a\n  /b\n  /c\n  /d\n  /e\n  …");
}

TEST(Table, alignsAllButTheLastColumnToTheRight) {
  Table table;
  table.add({"1 KB", "caf\u00e9", "x"});
  table.add({"100 bytes", "tea", "y"});
  EXPECT_EQ(table.text(), "       1 KB  caf\u00e9  x\n  100 bytes   tea  y\n");
}

}  // namespace
}  // namespace spacemint::ctl
