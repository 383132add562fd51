// A search against find on random trees, and the exchange of scans with other programs.

#include "core/analysis/Search.h"

#include "core/history/NcduFormat.h"
#include "core/history/ScanFile.h"
#include "core/history/SnapshotCodec.h"
#include "core/scan/DiskScanner.h"
#include "core/tree/Paths.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"
#include "support/TreeBuilder.h"

#include <gmock/gmock.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::file;
using support::folder;
using testing::ElementsAre;

const Date now = dateFromUnixSeconds(1'800'000'000);

// A tree of real files whose names share parts, and questions about it.
class RandomTree {
 public:
  explicit RandomTree(unsigned seed) : random_(seed) {
    std::vector<std::string> folders{at.path()};
    for (int i = 0; i < 150; ++i) {
      const std::string path = folders[below(folders.size())] + "/" + name();
      std::error_code failed;
      if (below(4) == 0 && fs::create_directory(path, failed)) folders.push_back(path);
      if (fs::exists(path, failed)) continue;
      std::ofstream{path} << std::string(below(4) * 5'000, 'x');
      fs::last_write_time(path, std::chrono::file_clock::from_sys(now - std::chrono::days{below(60)} -
                                                                  std::chrono::seconds{1}));
    }
  }

  // The words of a search and the conditions of find that mean the same.
  std::pair<std::string, std::string> question(std::size_t first, std::size_t count) {
    const std::string word{parts[below(parts.size())]};
    const std::string pattern = word == " " ? "a" : word;
    const auto age = below(60);
    const auto blocks = below(4);
    const auto day = (now - std::chrono::days{age}).time_since_epoch().count() / 1'000'000;
    const std::pair<std::string, std::string> all[]{
        {'"' + word + '"', "-iname '*" + word + "*'"},
        {pattern + "*", "-iname '" + pattern + "*'"},
        {"*?" + pattern + "?", "-iname '*?" + pattern + "?'"},
        {"type:file", "-type f"},
        {"type:folder", "-type d"},
        {"type:file >" + std::to_string(4'096 * blocks), "-type f -size +" + std::to_string(8 * blocks)},
        {"older:" + std::to_string(age) + "d", "-type f ! -newermt @" + std::to_string(day)},
    };
    return all[first + below(count)];
  }

  std::set<std::string> found(const std::string& conditions) const {
    const std::string list = at / "../found-" + fs::path{at.path()}.filename().string();
    const std::string command = "cd '" + at.path() + "' && LC_ALL=C.UTF-8 find . -mindepth 1 " + conditions +
                                " -print0 > '" + list + "'";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    std::ifstream lines{list};
    std::set<std::string> paths;
    for (std::string line; std::getline(lines, line, '\0');) paths.insert(at.path() + line.substr(1));
    fs::remove(list);
    return paths;
  }

  Snapshot scan(Bytes minNodeSize) const {
    auto result = DiskScanner::scan({.root = at.path(), .minNodeSize = minNodeSize});
    return {.date = now,
            .root = std::move(result->root),
            .fileCount = result->fileCount,
            .minNodeSize = minNodeSize};
  }

  support::TemporaryFolder at;

 private:
  static constexpr std::array<std::string_view, 8> parts{"a", "Bc", ".iso", " ", "é", "Ü", "x.y", "日本"};

  std::size_t below(std::size_t limit) { return random_() % limit; }
  std::string name() {
    std::string text;
    for (std::size_t i = 1 + below(3); i > 0; --i) text += parts[below(parts.size())];
    return text + std::to_string(below(9));
  }

  std::mt19937_64 random_;
};

TEST(Search, findsWhatFindFinds) {
  for (unsigned seed = 1; seed <= 10; ++seed) {
    RandomTree tree{seed};
    const Snapshot scan = tree.scan(0);
    for (int i = 0; i < 10; ++i) {
      const auto [first, firstCondition] = tree.question(0, 3);
      const auto [second, secondCondition] = tree.question(2, 5);
      const auto query = parseSearch(first + " " + second);
      ASSERT_TRUE(query) << first << ' ' << second;
      std::set<std::string> paths;
      std::set<const Node*> above;
      for (const auto& each : search(scan, *query, FileKinds{}, now, 10'000)) {
        paths.insert(each.path);
        for (std::string path = each.path; path != scan.rootPath();)
          above.insert(scan.nodeAt(path = Paths::parent(path)));
      }
      const auto folders = foldersWithHits(scan, *query, FileKinds{}, now);
      EXPECT_EQ(std::set<const Node*>(folders.begin(), folders.end()), above) << first << ' ' << second;
      EXPECT_EQ(paths, tree.found(firstCondition + " " + secondCondition))
          << seed << ": " << first << ' ' << second;
    }
  }
}

TEST(Search, saysWhichWordIsWrongAndShowsTheLargestFirst) {
  const std::pair<const char*, int> wrong[]{
      {">", 0},         {"a >1XB", 2},       {"older:1", 0}, {"newer:-1d", 0},
      {"older:1yy", 0}, {"a type:films", 2}, {"<-1", 0},     {"type:file type:folder", 10}};
  for (const auto& [text, place] : wrong) {
    const auto query = parseSearch(text);
    ASSERT_FALSE(query) << text;
    EXPECT_EQ(query.error().code, place) << text;
  }
  const Snapshot scan{.root =
                          folder("/r", {file("Film.MKV", 3), file("song.mp3", 5),
                                        folder("video.mp4", {file("a.tar.gz", 9), file("clip.mp4", 7)})})};
  std::size_t count = 0;
  const auto found = search(scan, *parseSearch("type:video"), FileKinds{}, now, 1, &count);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found.front().path, "/r/video.mp4/clip.mp4");
  EXPECT_EQ(count, 2U);
}

TEST(FileKinds, followTheMimeDatabaseAndAddUp) {
  const FileKinds kinds{
      "# comment\n80:video/x-new:*.NEW\n50:text/x-old:*.new\n50:application/x-tar:*.tar.q\n"
      "50:image/x:*.[ab]\nnonsense\n50:chemical/x:*.tar\n"};
  const std::pair<const char*, FileKind> cases[]{
      {"a.New", FileKind::video},   {"a.b.tar.q", FileKind::archives}, {"m.gguf", FileKind::models},
      {"a.a", FileKind::other},     {"new", FileKind::other},          {".new", FileKind::video},
      {"x.tar", FileKind::archives}};
  for (const auto& [name, kind] : cases) EXPECT_EQ(kinds.of(name), kind) << name;
  EXPECT_THAT(kindTotals(folder("/r", {file("a.new", 3),
                                       folder("d.new", {file("b.new", 4), file("c", 9)}, {100, 7})}),
                         kinds),
              ElementsAre(KindTotal{FileKind::other, 9, 1}, KindTotal{FileKind::video, 7, 2}));
}

TEST(NcduFormat, readsBackWhatItWrote) {
  for (unsigned seed = 1; seed <= 10; ++seed) {
    const RandomTree tree{seed};
    Snapshot scan = tree.scan(seed % 2 == 0 ? 0 : 9'000);
    if (!scan.root.children.empty())
      scan.root.children.front().isWorktree = scan.root.children.front().isDirectory;
    const auto path = [&](const char* name) { return tree.at / name; };
    scan.coverage.leftOut = {{.path = path("cache"), .kind = LeftOut::Kind::excluded},
                             {.path = path("disk")}};
    scan.coverage.unread = {.folders = 1, .paths = {scan.rootPath()}};
    if (scan.minNodeSize > 0)  // otherwise they would have nodes
      scan.coverage.unread = {.folders = 3,
                              .paths = {scan.rootPath(), path("no node/secret"), path("secret")}};
    const auto back = NcduFormat::decode(NcduFormat::encode(scan, "host", "1"));
    ASSERT_TRUE(back) << back.error().message;
    EXPECT_EQ(back->snapshot.root, scan.root) << seed;
    EXPECT_EQ(back->snapshot.coverage, scan.coverage) << seed;
    EXPECT_EQ(back->host, "host");
    EXPECT_EQ(back->snapshot.date, scan.date);
    EXPECT_EQ(ScanFile::decode(" " + NcduFormat::encode(scan, "host", "1"))->host, "host");
    EXPECT_EQ(ScanFile::decode(SnapshotCodec::encode(scan).value())->snapshot, scan);
  }
  Node deep = folder("d", {});
  for (std::size_t i = 2; i < Node::maximumDepth; ++i) {
    std::vector<Node> children;
    children.push_back(std::move(deep));
    deep = folder("d", std::move(children));
  }
  const Snapshot scan{.root = std::move(deep)};
  EXPECT_TRUE(NcduFormat::decode(NcduFormat::encode(scan, "", "")));
}

TEST(NcduFormat, readsWhatOtherProgramsWrite) {
  const auto read = NcduFormat::decode(R"~([1, 0, {"progname": "other", "more": [{"name": 1}]},
    [{"name": "/srv", "dsize": 4096, "asize": 10, "dev": 5},
     {"name": "a", "dsize": 8192, "ino": 7, "hlnkc": true, "nlink": 2},
     [{"name": "sub", "dsize": 100, "excluded": "pattern"}, {"name": "b", "ino": 7, "hlnkc": true, "dsize": 8192}],
     {"name": "skipped", "excluded": "pattern", "dsize": 5},
     [{"name": "other disk", "dev": 6, "read_error": true}, {"name": "proc", "excluded": "kernfs"}, {"name": "c", "ino": 7, "hlnkc": true, "dsize": 8192}],
     {"name": "bad)~"
                                       "\xff"
                                       R"~(", "mtime": 60}]])~");
  ASSERT_TRUE(read) << read.error().message;
  Node linked = folder("sub", {file("b", 0)}, {100, 0});
  Node broken = file("bad\uFFFD", 0);
  broken.modified = dateFromUnixSeconds(60);
  EXPECT_EQ(read->snapshot.root, folder("/srv",
                                        {file("a", 8'192), std::move(linked),
                                         folder("other disk", {file("c", 8'192)}), std::move(broken)},
                                        {4'096, 0}));
  EXPECT_EQ(read->snapshot.coverage,
            (Coverage{.leftOut = {{.path = "/srv/other disk/proc"},
                                  {.path = "/srv/skipped", .kind = LeftOut::Kind::excluded}},
                      .unread = {.folders = 1, .paths = {"/srv/other disk"}}}));
  EXPECT_EQ(read->program, "other");
}

TEST(NcduFormat, readsWhatNcduWrites) {
  if (std::system("ncdu --version >/dev/null 2>&1") != 0) GTEST_SKIP() << "ncdu is not installed";
  const support::TemporaryFolder out;
  for (unsigned seed = 20; seed < 23; ++seed) {
    const RandomTree tree{seed};
    const std::string command =
        "ncdu -0 -e -o '" + (out / "export") + "' '" + tree.at.path() + "' </dev/null >/dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    const auto read = NcduFormat::decode(support::readText(out / "export"));
    ASSERT_TRUE(read) << read.error().message;
    const Snapshot scan = tree.scan(0);
    const std::size_t all = static_cast<std::size_t>(scan.fileCount);
    const auto byPath = [&](const Snapshot& of) {
      auto files = of.largestFiles(all + 1);
      std::ranges::sort(files, {}, &FileItem::path);
      return files;
    };
    EXPECT_EQ(byPath(read->snapshot), byPath(scan));
    EXPECT_EQ(read->snapshot.root.fileCount, scan.root.fileCount);
    EXPECT_EQ(read->program, "ncdu");
  }
}

TEST(NcduFormat, saysWhatIsWrong) {
  const std::string tooDeep = "[1,2,{}," + [] {
    std::string text;
    for (std::size_t i = 0; i < 20'000; ++i) text += R"([{"name":"d"},)";
    return text;
  }();
  for (const std::string& text :
       {std::string{}, std::string{"{}"}, std::string{"[]"}, std::string{"[1,2,{}]"},
        std::string{"[2,0,{},[{\"name\":\"a\"}]]"}, std::string{"[1,2,[{\"name\":\"a\"}]]"},
        std::string{"[1,2,{},[]]"}, std::string{"[1,2,{},[[]]]"}, std::string{"[1,2,{},[{\"dsize\":1}]]"},
        std::string{"[1,2,{},[{\"name\":\"a\"},7]]"}, std::string{"[1,2,{},{\"name\":\"a\"}]"},
        std::string{"[1,2,{},[{\"name\":\"a\"}"}, tooDeep}) {
    EXPECT_FALSE(NcduFormat::decode(text)) << text.substr(0, 60);
  }
}

}  // namespace
}  // namespace spacemint
