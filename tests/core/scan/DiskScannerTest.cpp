#include "core/scan/DiskScanner.h"

#include "core/scan/ReadAheadListing.h"
#include "support/FakeListing.h"
#include "support/TreeBuilder.h"

#include <gtest/gtest.h>

#include <latch>

namespace spacemint {
namespace {

using support::FakeFolder;
using support::FakeListing;
using support::fileEntry;
using support::folderEntry;
using support::names;
using Names = std::vector<std::string>;

constexpr Bytes mega = 1'000'000;

// Scans a fake tree at "/r" with everything kept that is at least 20 MB, plainly and read ahead: the walk
// must not be able to tell.
DiskScanner::Result scanned(const FakeFolder& root, DiskScanner::Arguments arguments = {}) {
  FakeListing plain{root};
  ReadAheadListing ahead{plain, 3};
  arguments.root = "/r";
  arguments.minNodeSize = 20 * mega;
  arguments.listing = &plain;
  const auto result = DiskScanner::scan(arguments);
  arguments.listing = &ahead;
  EXPECT_EQ(DiskScanner::scan(arguments), result);
  return result.value();
}

TEST(DiskScanner, keepsWhatReachesTheThresholdAndCountsTheRest) {
  const auto result = scanned(
      {.batches = {{folderEntry("just"), folderEntry("short"), fileEntry("f", 20 * mega)}},
       .subfolders = {{"just", {.batches = {{fileEntry("a", 10 * mega)}, {fileEntry("b", 10 * mega)}}}},
                      {"short", {.batches = {{fileEntry("c", 20 * mega - 1)}}}}}});
  EXPECT_EQ(result.root.name, "/r");
  EXPECT_EQ(names(result.root), (Names{"f", "just"}));  // ties: files before folders
  EXPECT_EQ(result.root.size, 60 * mega - 1);
  EXPECT_EQ(result.root.fileCount, 4);
  EXPECT_EQ(result.fileCount, 4);
  EXPECT_EQ(result.root.children[1].fileCount, 2);
  EXPECT_TRUE(result.root.children[1].isDirectory);
  EXPECT_FALSE(result.root.children[1].modified);
}

TEST(DiskScanner, visitsSubfoldersInReverseAndSortsTiesByThat) {
  const FakeFolder big{.batches = {{fileEntry("x", 30 * mega)}}};
  const auto result =
      scanned({.batches = {{folderEntry("first"), folderEntry("second")}, {fileEntry("file", 30 * mega)}},
               .subfolders = {{"first", big}, {"second", big}}});
  EXPECT_EQ(names(result.root), (Names{"file", "second", "first"}));
}

TEST(DiskScanner, judgesEachKindOfEntry) {
  Entry link{.name = "link", .type = EntryType::other, .links = 2, .allocated = 60 * mega};
  Entry fakeGit{.name = ".git", .type = EntryType::other};
  Entry broken{.name = "broken", .type = EntryType::file, .error = EIO, .allocated = 99 * mega};
  Entry gone{.name = "gone", .type = EntryType::file, .error = ENOENT, .allocated = 99 * mega};
  Entry old = fileEntry("old", 40 * mega);
  old.modified = -5;
  const auto result = scanned(
      {.batches = {{link, fakeGit, broken, gone, old, fileEntry("twice", 101, 2), folderEntry("mounted", 2),
                    folderEntry("tree"), folderEntry("repository")}},
       .subfolders = {{"mounted", {.batches = {{fileEntry("x", 99 * mega)}}}},
                      {"tree", {.batches = {{fileEntry(".git", 50 * mega)}}}},
                      {"repository", {.batches = {{folderEntry(".git"), fileEntry("y", 45 * mega)}}}}}});
  EXPECT_EQ(names(result.root), (Names{"link", "tree", "repository", "old"}));
  EXPECT_EQ(result.root.children[3].modified, Date{std::chrono::seconds{-5}});
  EXPECT_EQ(result.root.size, 195 * mega + 50);
  EXPECT_FALSE(result.root.isWorktree);
  EXPECT_TRUE(result.root.children[1].isWorktree);
  EXPECT_FALSE(result.root.children[2].isWorktree);
  EXPECT_EQ(result.unread, (DiskScanner::Unread{.entries = 1, .hasFailures = true, .paths = {"/r/broken"}}));
}

TEST(DiskScanner, countsWhatItCouldNotReadButNotWhatVanished) {
  FakeFolder root{.listingError = EIO};
  root.batches.emplace_back();
  const std::map<std::string, int> failures{{"secret", EACCES}, {"other", EXDEV}, {"gone", ENOENT},
                                            {"file", ENOTDIR},  {"link", ELOOP},  {"full", EMFILE}};
  for (const auto& [name, error] : failures) root.batches[0].push_back(folderEntry(name.c_str()));
  root.openErrors = failures;
  const auto result = scanned(root);
  EXPECT_EQ(result.unread.folders, 3);
  EXPECT_EQ(result.unread.paths, (Names{"/r", "/r/secret", "/r/full"}));
  EXPECT_EQ(result.root.size, 0);
}

TEST(DiskScanner, reusesAndSkipsWithoutOpening) {
  FakeFolder root{
      .batches = {{folderEntry("walked"), folderEntry("known"), folderEntry("small"), folderEntry("left")}},
      .subfolders = {{"walked", {.batches = {{fileEntry("x", 20 * mega)}}}}}};
  const Node known = support::folder("known", {support::file("k", 70 * mega)}, {.unlistedFiles = 4});
  Names asked;
  DiskScanner::Progress last;
  const auto result = scanned(root, {.skip = {"/r/left"},
                                     .reuse = [&](const std::string& path) -> std::optional<Node> {
                                       asked.push_back(path);
                                       if (path == "/r/known" || path == "/r/left") return known;
                                       if (path == "/r/small")
                                         return support::folder("small", {}, {19 * mega, 2});
                                       return std::nullopt;
                                     },
                                     .progress = [&](const DiskScanner::Progress& p) { last = p; }});
  EXPECT_EQ(names(result.root), (Names{"known", "walked"}));
  EXPECT_EQ(result.root.children[0], known);
  EXPECT_EQ(result.root.size, 109 * mega);
  EXPECT_EQ(result.fileCount, 8);
  EXPECT_EQ(last.files, 8);
  EXPECT_EQ(last.bytes, 109 * mega);
  asked.resize(asked.size() / 2);  // scanned twice
  EXPECT_EQ(asked, (Names{"/r/small", "/r/known", "/r/walked"}));
}

TEST(DiskScanner, pollsOncePerFourThousandEntries) {
  const std::vector<Entry> batch(3'000, fileEntry("f", 1));
  const FakeFolder root{.batches = {batch, batch, batch, {folderEntry("d")}},
                        .subfolders = {{"d", {.batches = {batch}}}}};
  std::vector<std::int64_t> reported;
  scanned(root, {.progress = [&](const DiskScanner::Progress& p) { reported.push_back(p.files); }});
  reported.resize(reported.size() / 2);
  EXPECT_EQ(reported, (std::vector<std::int64_t>{6'000, 12'000, 12'000}));

  FakeListing listing{root};
  int polls = 0;
  bool reportedAnything = false;
  EXPECT_FALSE(DiskScanner::scan({.root = "/r",
                                  .shouldCancel = [&] { return ++polls == 1; },
                                  .progress = [&](const DiskScanner::Progress&) { reportedAnything = true; },
                                  .listing = &listing}));
  EXPECT_EQ(polls, 1);
  EXPECT_FALSE(reportedAnything);
}

// Opens no subfolder before another thread wants to open one too.
class MeetingListing final : public FolderListing {
 public:
  std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string&) override {
    return std::make_unique<Opened>(std::vector{folderEntry("a"), folderEntry("b")}, met_);
  }

 private:
  class Opened final : public OpenFolder {
   public:
    Opened(std::vector<Entry> entries, std::latch& met) : entries_(std::move(entries)), met_(met) {}
    std::uint64_t device() const override { return 1; }
    Batch nextBatch(ListingBuffer&) override {
      return {.entries =
                  std::exchange(left_, 0) == 1 ? std::span<const Entry>{entries_} : std::span<const Entry>{}};
    }
    std::expected<std::unique_ptr<OpenFolder>, int> openSubfolder(const std::string&) override {
      met_.arrive_and_wait();
      return std::make_unique<Opened>(std::vector<Entry>{}, met_);
    }

   private:
    std::vector<Entry> entries_;
    std::latch& met_;
    int left_ = 1;
  };

  std::latch met_{2};
};

TEST(ReadAhead, opensFoldersSideBySide) {
  MeetingListing meeting;
  ReadAheadListing ahead{meeting, 2};
  EXPECT_EQ(DiskScanner::scan({.root = "/r", .listing = &ahead})->root.children.size(), 2U);  // or it hangs
}

TEST(DiskScanner, countsToTheLargestNumberWhateverAFileSystemSays) {
  constexpr Bytes most = std::numeric_limits<Bytes>::max();
  EXPECT_EQ(scanned({.batches = {{fileEntry("a", most), fileEntry("b", most)}}}).root.size, most);
}

}  // namespace
}  // namespace spacemint
