// spacemintctl browse: what it draws, what it knows of a folder, and the whole way through it on a terminal.

#include "core/base/Translation.h"
#include "core/tree/Paths.h"
#include "core/tree/TreeWalk.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/browse/BrowseText.h"
#include "spacemintctl/browse/BrowseTree.h"
#include "spacemintctl/browse/BrowseView.h"
#include "spacemintctl/browse/Cells.h"
#include "support/Program.h"
#include "support/TerminalSession.h"
#include "support/TreeBuilder.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdio>
#include <cwchar>
#include <filesystem>
#include <map>
#include <random>

namespace spacemint::ctl {
namespace {

using support::Program;
using support::TerminalSession;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

constexpr const char* hostileNames[]{"plain.txt",
                                     "日本語ファイル名テスト.txt",
                                     "שלום עולם.pdf",
                                     "مرحبا",
                                     "e\u0301\u0323combining",
                                     "\u0301starts with a mark",
                                     "bad\xff\xfe\xc3",
                                     "esc\x1b[31mred\x07",
                                     "rlo\u202egnp.exe",
                                     "c1\u009b2J",
                                     "two\nlines\tand a tab",
                                     "👩‍👩‍👧 family",
                                     "zero\u200bwidth\u2066isolate",
                                     "\xf0\x9f",
                                     "tag\U000e0041",
                                     ""};

// The columns as the C library counts them, independently of the code under test; -1 for what must not be
// shown.
int libraryColumns(const std::string& text) {
  std::mbstate_t state{};
  const char* from = text.c_str();
  const std::size_t length = std::mbsrtowcs(nullptr, &from, 0, &state);
  if (length == std::string::npos) return -1;
  std::wstring wide(length, L'\0');
  from = text.c_str();
  std::mbsrtowcs(wide.data(), &from, length + 1, &state);
  for (const wchar_t each : wide) {
    if ((each >= 0x202a && each <= 0x202e) || (each >= 0x2066 && each <= 0x2069)) return -1;
  }
  return wcswidth(wide.c_str(), length);
}

TEST(BrowseView, fillsEveryLineWhateverTheNamesAre) {
  setUpTranslation("");
  std::mt19937 random{7};
  const auto any = [&](std::size_t below) { return random() % below; };
  for (int round = 0; round < 400; ++round) {
    BrowseView view{.home = "/home/ann", .locale = "en_US", .now = currentTime()};
    for (std::size_t i = any(40); i > 0; --i) {
      view.rows.push_back(
          {.kind = static_cast<Row::Kind>(any(4)),
           .path = "/" + std::to_string(i),
           .name = hostileNames[any(std::size(hostileNames))],
           .size = static_cast<Bytes>(random()) << any(30),
           .fileCount = static_cast<std::int64_t>(random()),
           .modified = any(2) == 0 ? std::optional{Date{std::chrono::seconds{random()}}} : std::nullopt,
           .isDirectory = any(2) == 0,
           .growth = any(2) == 0 ? std::optional{static_cast<Bytes>(random()) - 2'000'000'000} : std::nullopt,
           .flag = static_cast<Flag>(any(8))});
    }
    view.title = view.status = view.footer = hostileNames[any(std::size(hostileNames))];
    view.footer += std::string(any(300), any(9) == 0 ? ' ' : 'w');
    view.footerStyle = any(2) == 0 ? Style::dim : Style::warning;
    view.figure = "1.2 GB in 3 files";
    view.whole = static_cast<Bytes>(random());
    view.cursor = any(50);
    view.showsGrowth = any(2) == 0;
    view.share = static_cast<ShareColumn>(any(4));
    view.order = {.key = static_cast<RowKey>(any(5)), .isReversed = any(2) == 0, .foldersFirst = any(2) == 0};
    sortRows(view.rows, view.order);
    if (any(2) == 0) {
      view.popup = Popup{
          .title = hostileNames[any(std::size(hostileNames))], .keys = "Esc leave", .firstLine = any(9)};
      for (std::size_t i = any(9); i > 0; --i)
        view.popup->text.push_back(
            {.text = hostileNames[any(std::size(hostileNames))] + std::string(any(200), 'w'),
             .label = i % 2 == 0 ? "label" : ""});
      for (std::size_t i = any(30); i > 0; --i)
        view.popup->choices.emplace_back(hostileNames[any(std::size(hostileNames))]);
      if (any(3) == 0) view.popup->input = hostileNames[any(std::size(hostileNames))];
      view.popup->chosen = view.popup->choices.empty() ? 0 : any(view.popup->choices.size());
    }
    const ScreenSize size{.columns = 12 + any(150), .rows = 1 + any(50)};
    scrollToCursor(view, size);
    const Screen screen = drawn(view, size);
    ASSERT_EQ(screen.lines.size(), size.rows);
    for (const Line& line : screen.lines)
      ASSERT_EQ(libraryColumns(line.text()), static_cast<int>(size.columns)) << line.text();
    if (size.rows > 4 && !view.rows.empty() && !view.popup) {
      EXPECT_EQ(std::ranges::count(screen.lines, true, &Line::isChosen), 1);
    }
  }
}

TEST(BrowseRows, sayWhatIsSpecial) {
  const Date now = currentTime();
  const auto ago = [&](int days) { return now - std::chrono::days{days}; };
  const auto plain = [](const char* name, std::optional<Date> modified = {}) {
    return Node{.name = name, .size = 10, .modified = modified};
  };
  const auto folder = [](const char* name, std::vector<Node> children) {
    return support::folder(name, std::move(children));
  };
  const Node scanned =
      folder("/r", {folder("deep", {folder("a", {plain("old", ago(9))}), plain("x", ago(5))})});
  const Node listing = folder(
      "/r", {folder("deep", {plain("x")}), folder("part", {plain("y")}), folder("touched", {plain("z")}),
             folder("empty", {}), plain("file", ago(1)), plain("linked"), plain("fifo")});
  const Coverage coverage{.leftOut = {{.path = "/r/cache", .kind = LeftOut::Kind::excluded},
                                      {.path = "/r/mnt"},
                                      {.path = "/r/a/b"}},
                          .unread = {.folders = 3, .paths = {"/r/part/q/secret", "/r/secret", "/rest"}}};
  const FolderLook look{{"touched", {.type = EntryType::folder, .modified = ago(2)}},
                        {"deep", {.type = EntryType::folder, .modified = ago(7)}},
                        {"linked", {.type = EntryType::file, .links = 2}},
                        {"file", {.type = EntryType::file}},
                        {"fifo", {.type = EntryType::other}}};
  std::map<std::string, std::pair<char, std::optional<Date>>> seen;
  for (const Row& row : rowsOf({.folder = listing,
                        .path = "/r",
                        .isComplete = true,
                        .scanned = &scanned,
                        .coverage = &coverage,
                        .look = look}))
    seen[row.name] = {signOf(row.flag), row.modified};
  EXPECT_EQ(seen, (decltype(seen){{"deep", {' ', ago(5)}},
                                  {"part", {'.', {}}},
                                  {"touched", {' ', ago(2)}},
                                  {"empty", {'e', {}}},
                                  {"file", {' ', ago(1)}},
                                  {"linked", {'H', {}}},
                                  {"fifo", {'@', {}}},
                                  {"cache", {'<', {}}},
                                  {"mnt", {'>', {}}},
                                  {"secret", {'!', {}}}}));
}

TEST(BrowseCells, cutAtWholeCharacters) {
  setUpTranslation("");
  EXPECT_EQ(fitted("日本語", 5), "日本…");
  EXPECT_EQ(fitted("日本語", 4), "日… ");
  EXPECT_EQ(fitted("ae\u0301b", 3), "ae\u0301b");
  EXPECT_EQ(fitted("ae\u0301bc", 3), "ae\u0301…");
  EXPECT_EQ(fitted("12", 4, Side::right), "  12");
  EXPECT_EQ(endOf("/home/ann/code", 6), "…/code");
  EXPECT_EQ(shownText("a\x1b[2J\u202e\xff"), "a\ufffd[2J\ufffd\ufffd");
  EXPECT_THAT(BrowseText::marks({{"/a", 5'000}, {"/a b", 1'000}, {"/a/b/c", 3'000}}, "en_US"),
              testing::HasSubstr("6 KB"));
}

// The tree of a whole disk against what browse knows of it: a scan without small nodes, and some listings.
class BrowseTreeTest : public testing::Test {
 protected:
  static constexpr Bytes minimum = 100;

  Node randomFolder(std::string name, int depth) {
    std::vector<Node> children;
    for (std::size_t i = random_() % 5 + 1; i > 0; --i)
      children.push_back(support::file("f" + std::to_string(i), static_cast<Bytes>(random_() % 90)));
    for (std::size_t i = depth > 0 ? random_() % 4 : 0; i > 0; --i)
      children.push_back(randomFolder("d" + std::to_string(i), depth - 1));
    return support::folder(std::move(name), std::move(children));
  }
  static void dropSmall(Node& node) {
    std::erase_if(node.children, [](const Node& child) { return child.size < minimum; });
    for (Node& child : node.children) dropSmall(child);
  }
  static BrowseTree known(const Snapshot& disk) {
    BrowseTree tree;
    Snapshot scan = disk;
    scan.minNodeSize = minimum;
    dropSmall(scan.root);
    tree.setScan(std::move(scan));
    return tree;
  }
  std::mt19937 random_{11};
};

TEST_F(BrowseTreeTest, isRightAfterRemovalsOfWhatHasANodeAndWhatHasNone) {
  for (int round = 0; round < 60; ++round) {
    Snapshot disk{.root = randomFolder("/r", 4)};
    disk.fileCount = disk.root.fileCount;
    BrowseTree tree = known(disk);
    for (int step = 0; step < 8; ++step) {
      std::vector<std::string> folders;
      std::vector<std::string> items;
      walkTree(disk.root, [&](const std::string& path, const Node& node) {
        if (node.isDirectory) folders.push_back(path);
        if (path != "/r") items.push_back(path);
      });
      if (items.empty()) break;
      const std::string& listed = folders[random_() % folders.size()];
      tree.keepListing(listed, *disk.nodeAt(listed));
      const std::string gone = items[random_() % items.size()];
      // Someone removes only what is shown: of a folder that was listed, or large enough for the scan.
      if (!tree.folder(Paths::parent(gone)).isComplete && tree.scan().nodeAt(gone) == nullptr) continue;
      disk.remove(gone);
      tree.put({.path = gone, .exists = false});
      EXPECT_EQ(tree.scan().fileCount, disk.fileCount);
      for (const std::string& path : folders) {
        const auto folder = tree.folder(path);
        const Node* real = disk.nodeAt(path);
        if (folder.node == nullptr) continue;
        ASSERT_NE(real, nullptr) << path << " is gone with " << gone;
        EXPECT_EQ(folder.node->size, real->size) << path;
        EXPECT_EQ(folder.node->fileCount, real->fileCount) << path;
        if (folder.isComplete) {
          EXPECT_THAT(support::names(*folder.node),
                      testing::UnorderedElementsAreArray(support::names(*real)));
        }
      }
    }
  }
}

class BrowseTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!Program::canHaveTerminal() || !TerminalSession::canBeUsed())
      GTEST_SKIP() << "no terminal to be had here";
  }
  // A scan of yesterday, then the growth of a day.
  void growSinceYesterday() const {
    program.addFile("vm/old.img", 3'000'000);
    program.addFile("film.mkv", 2'000'000);
    program.addFile("small/a", 40'000);
    program.addFile("small/b", 40'000);
    ASSERT_EQ(program.run({"scan", "--min-size", "500000"}).exitCode, 0);
    Snapshot scan = program.scans().load(program.scans().entries().front()).value();
    std::filesystem::remove_all(program.scans().directory);
    scan.date -= std::chrono::days{1};
    scan.fullScanDate = scan.date;
    ASSERT_TRUE(program.scans().save(scan));
    program.addFile("vm/old.img", 500'000);
    program.addFile("new.bin", 1'000'000);
  }
  TerminalSession browse(const std::string& arguments) const {
    return {program.home().path(), std::string{SPACEMINTCTL} + " browse " + arguments, 100, 24};
  }
  // Whether the names stand on the screen in this order, from the top.
  static bool inOrder(const std::string& screen, const std::vector<std::string>& names) {
    std::size_t at = 0;
    return std::ranges::all_of(
        names, [&](const std::string& name) { return (at = screen.find(name, at)) != std::string::npos; });
  }

  Program program{SPACEMINTCTL};
};

TEST_F(BrowseTest, goesTheWholeWay) {
  growSinceYesterday();
  const TerminalSession terminal = browse("--allow-removal");
  // The kept scan opens at once; the disk is measured behind it.
  EXPECT_THAT(terminal.wait("Scanned just now · growth since"),
              AllOf(HasSubstr("+500 KB"), HasSubstr("+1 MB"), HasSubstr("new.bin")));
  const auto inThisOrder = [&](const std::vector<std::string>& names) {
    const std::string screen =
        terminal.waitUntil([&](const std::string& now) { return inOrder(now, names); });
    EXPECT_TRUE(inOrder(screen, names)) << screen;
  };
  inThisOrder({"vm/", "film.mkv", "new.bin", "small/"});
  terminal.press("n");
  inThisOrder({"film.mkv", "new.bin", "small/", "vm/"});
  terminal.press("G");
  inThisOrder({"new.bin", "vm/", "film.mkv"});
  terminal.press("/");
  terminal.press("new Enter");
  terminal.wait("1 found");
  terminal.press("Enter");
  terminal.wait("growth since");
  terminal.press("s");
  inThisOrder({"vm/", "film.mkv", "new.bin", "small/"});
  // What is too small for the scan is listed all the same, and its removal shows in every sum.
  terminal.press("End Up l");
  inThisOrder({"~/small", "in 2 files", "a\n", "b\n"});
  terminal.press("Space Space d");
  EXPECT_THAT(terminal.wait("Delete for good"), HasSubstr("~/small/b"));
  terminal.press("Down Down Enter");
  EXPECT_THAT(terminal.wait("Deleted 2 items"), HasSubstr("in 0 files"));
  terminal.press("h");
  inThisOrder({"vm/", "film.mkv", "new.bin", "small/"});
  EXPECT_FALSE(std::filesystem::exists(program.home() / "small/a"));
  EXPECT_TRUE(std::filesystem::exists(program.home() / "small"));
  terminal.press("Home Down d");
  terminal.wait("Move to the Trash");
  terminal.press("Down Enter");
  terminal.wait("Moved “film.mkv” to the Trash");
  EXPECT_TRUE(std::filesystem::exists(program.home() / ".local/share/Trash/files/film.mkv"));
  terminal.resize(60, 16);
  const testing::Matcher<const std::string&> allOfIt = AllOf(
      ContainsRegex("^ ~ "), HasSubstr("vm/"), ContainsRegex("gone +−2 MB film.mkv"), HasSubstr("Moved"));
  EXPECT_THAT(terminal.waitUntil([&](const std::string& now) {
    return std::ranges::count(now, '\n') == 16 && allOfIt.Matches(now);
  }),
              allOfIt);
  terminal.press("q");
  terminal.wait("exit 0");
  EXPECT_TRUE(terminal.isGivenBack());
  const Snapshot kept = program.scans().load(program.scans().entries().front()).value();
  EXPECT_EQ(kept.nodeAt(program.home() / "film.mkv"), nullptr);
}

// The mouse as a terminal reports it, and a shell that comes and is killed.
TEST_F(BrowseTest, takesClicksAndLendsTheTerminalToAShell) {
  std::filesystem::create_hard_link(program.addFile("folder/old", 40'000), program.home() / "folder/again");
  program.addFile("folder/.hidden", 30'000);
  program.addFile("folder/b", 50'000);
  const TerminalSession terminal = browse("--read-only");
  const auto shows = [&](const std::vector<std::string>& names) {
    const std::string screen =
        terminal.waitUntil([&](const std::string& now) { return inOrder(now, names); });
    EXPECT_TRUE(inOrder(screen, names)) << screen;
  };
  shows({" folder/\n", "Scanned just now"});
  terminal.click(60, 3);
  shows({"~/folder", " b\n", ".hidden\n", "H", "again\n", "H", "old\n"});
  terminal.turnWheel(1);
  terminal.press("i");
  shows({"Info", "~/folder/old", "any key"});
  terminal.press("x");
  terminal.click(60, 2);
  shows({".hidden\n", "again\n", " b\n", "old\n"});
  terminal.press(".");
  EXPECT_THAT(terminal.wait("without hidden files"), Not(HasSubstr(".hidden")));
  terminal.press("! 'echo in $PWD; read line; kill -9 $$' Enter");
  terminal.wait("in " + program.home() / "folder");
  terminal.press("Enter");
  terminal.wait("without hidden files");
  terminal.click(3, 1);
  shows({" ~ ", "folder/"});
  terminal.press("q");
  terminal.wait("exit 0");
  EXPECT_TRUE(terminal.isGivenBack());
}

TEST_F(BrowseTest, givesTheTerminalBackWhateverEndsIt) {
  program.addFile("file", 10);
  for (const auto& [signal, code] :
       {std::pair{SIGTERM, 130}, {SIGHUP, 130}, {SIGSEGV, 128 + SIGSEGV}, {SIGABRT, 128 + SIGABRT}}) {
    const TerminalSession terminal = browse("--read-only");
    terminal.wait("Scanned just now");
    kill(terminal.process(), signal);
    EXPECT_THAT(terminal.wait("exit "), HasSubstr("exit " + std::to_string(code)));
    EXPECT_TRUE(terminal.isGivenBack()) << signal;
  }
}

TEST_F(BrowseTest, removesNothingWhereItIsReadOnly) {
  const std::string file = program.addFile("file", 600'000);
  ASSERT_EQ(
      program.run({"scan", "--no-save", "--min-size", "500000", "--export", program.home() / "scan.json"})
          .exitCode,
      0);
  for (const std::string& arguments :
       {std::string{"--read-only"}, "--import " + program.home() / "scan.json"}) {
    const TerminalSession terminal = browse(arguments);
    terminal.wait("read-only");
    terminal.press("d");
    EXPECT_THAT(terminal.wait("othing can be removed"), Not(HasSubstr("Delete for good"))) << arguments;
  }
  EXPECT_TRUE(std::filesystem::exists(file));
  EXPECT_THAT(program.run({"browse"}).err, HasSubstr("there is no terminal to browse in"));
  EXPECT_EQ(program.run({"browse", "--json"}).exitCode, 2);
  EXPECT_THAT(program.run({program.home().path()}).err, HasSubstr("there is no terminal to browse in"));
}

}  // namespace
}  // namespace spacemint::ctl
