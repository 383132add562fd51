#include "core/host/FolderSum.h"
#include "core/scan/DiskScanner.h"
#include "core/scan/FoundSoFar.h"
#include "core/scan/ReadAheadListing.h"
#include "core/scan/ScanPlan.h"
#include "core/scan/ScanTiming.h"
#include "core/scan/StoppableScan.h"
#include "support/TreeBuilder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <functional>
#include <latch>
#include <map>
#include <random>

namespace spacemint {
namespace {

using namespace std::chrono_literals;
using support::names;
using Names = std::vector<std::string>;

constexpr Bytes mega = 1'000'000;

// A folder that exists in memory only: what its listing says, batch by batch, and what opening a name gives.
struct FakeFolder {
  std::vector<std::vector<Entry>> batches = {};
  int listingError = 0;
  std::map<std::string, FakeFolder> subfolders = {};
  std::map<std::string, int> openErrors = {};
};

// A listing of one fake tree on device 1. It calls `onOpening` before it opens a subfolder.
class FakeListing final : public FolderListing {
 public:
  explicit FakeListing(
      FakeFolder root, std::function<void()> onOpening = [] {})
      : root_(std::move(root)),
        onOpening_(std::move(onOpening)) {}

  std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string&) override {
    return std::make_unique<Opened>(root_, onOpening_);
  }

 private:
  class Opened final : public OpenFolder {
   public:
    Opened(const FakeFolder& folder, const std::function<void()>& onOpening)
        : folder_(folder),
          onOpening_(onOpening) {}

    std::uint64_t device() const override { return 1; }

    Batch nextBatch(ListingBuffer&) override {
      if (next_ == folder_.batches.size()) return {.error = folder_.listingError};
      return {.entries = folder_.batches[next_++]};
    }

    std::expected<std::unique_ptr<OpenFolder>, int> openSubfolder(const std::string& name) override {
      onOpening_();
      const auto failure = folder_.openErrors.find(name);
      if (failure != folder_.openErrors.end()) return std::unexpected(failure->second);
      const auto found = folder_.subfolders.find(name);
      if (found == folder_.subfolders.end()) return std::unexpected(ENOENT);
      return std::make_unique<Opened>(found->second, onOpening_);
    }

   private:
    const FakeFolder& folder_;
    const std::function<void()>& onOpening_;
    std::size_t next_ = 0;
  };

  FakeFolder root_;
  std::function<void()> onOpening_;
};

Entry fileEntry(const char* name, Bytes allocated, std::uint32_t links = 1) {
  return {.name = name, .type = EntryType::file, .links = links, .device = 1, .allocated = allocated};
}

Entry folderEntry(const char* name, std::uint64_t device = 1) {
  return {.name = name, .type = EntryType::folder, .device = device};
}

// Scans a fake tree at "/r" with everything kept that is at least 20 MB, plainly and read ahead: the walk
// must not be able to tell.
DiskScanner::Result scanned(const FakeFolder& root, DiskScanner::Arguments arguments = {}) {
  FakeListing listing{root};
  arguments.root = "/r";
  arguments.minNodeSize = 20 * mega;
  arguments.listing = &listing;
  arguments.manner = always(ScanManner::waiting);
  const auto readAhead = DiskScanner::scan(DiskScanner::Arguments{arguments});
  arguments.manner = always(ScanManner::quiet);
  const auto result = DiskScanner::scan(arguments);
  EXPECT_EQ(readAhead, result);
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

TEST(DiskScanner, keepsAFolderWithManyFilesHoweverSmall) {
  const std::vector<Entry> many(manyFiles - 1, fileEntry("f", 1));
  const auto result = scanned(
      {.batches = {{folderEntry("few"), folderEntry("many")}},
       .subfolders = {{"few", {.batches = {many}}}, {"many", {.batches = {many, {fileEntry("g", 1)}}}}}});
  EXPECT_EQ(names(result.root), Names{"many"});
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
  EXPECT_EQ(result.coverage.unread, (Unread{.entries = 1, .hasFailures = true, .paths = {"/r/broken"}}));
}

TEST(DiskScanner, countsWhatItCouldNotReadButNotWhatVanished) {
  FakeFolder root{.listingError = EIO};
  root.batches.emplace_back();
  const std::map<std::string, int> failures{{"secret", EACCES}, {"other", EXDEV}, {"gone", ENOENT},
                                            {"file", ENOTDIR},  {"link", ELOOP},  {"full", EMFILE}};
  for (const auto& [name, error] : failures) root.batches[0].push_back(folderEntry(name.c_str()));
  root.openErrors = failures;
  const auto result = scanned(root);
  EXPECT_EQ(result.coverage.unread.folders, 3);
  EXPECT_EQ(result.coverage.unread.paths, (Names{"/r", "/r/secret", "/r/full"}));
  EXPECT_EQ(result.root.size, 0);
}

TEST(DiskScanner, reusesAndSkipsWithoutOpening) {
  FakeFolder root{
      .batches = {{folderEntry("walked"), folderEntry("known"), folderEntry("small"), folderEntry("left")}},
      .subfolders = {{"walked", {.batches = {{fileEntry("x", 20 * mega)}}}}}};
  const Node known = support::folder("known", {support::file("k", 70 * mega)}, {.unlistedFiles = 4});
  const Node small = support::folder("small", {}, {19 * mega, 2});
  DiskScanner::Progress last;
  const auto result = scanned(root, {.skip = {"/r/left"},
                                     .reuse = [&](const std::string& path) -> const Node* {
                                       if (path == "/r/known" || path == "/r/left") return &known;
                                       return path == "/r/small" ? &small : nullptr;
                                     },
                                     .progress = [&](const DiskScanner::Progress& p) { last = p; }});
  EXPECT_EQ(names(result.root), (Names{"known", "walked"}));
  EXPECT_EQ(result.root.children[0], known);
  EXPECT_EQ(result.root.size, 109 * mega);
  EXPECT_EQ(result.fileCount, 8);
  EXPECT_EQ(last.files, 8);
  EXPECT_EQ(last.bytes, 109 * mega);
  EXPECT_EQ(result.reusedFolders, (std::unordered_set<std::string>{"/r/small", "/r/known"}));
}

TEST(DiskScanner, canBeLookedAtWhileItRuns) {
  const std::vector<Entry> many(DiskScanner::entriesPerPoll, fileEntry("same", mega));
  const FakeFolder deep{.batches = {many, {folderEntry("c")}}, .subfolders = {{"c", {.batches = {many}}}}};
  const FakeFolder root{
      .batches = {{folderEntry("a"), folderEntry("b"), fileEntry("small", 1), fileEntry("tiny", 1)}},
      .subfolders = {{"a", deep}, {"b", deep}}};
  FakeListing listing{root};
  int looks = 0;
  const auto result =
      DiskScanner::scan({.root = "/r",
                         .minNodeSize = 20 * mega,
                         .look =
                             [&](const DiskScanner::Unfinished& unfinished) {
                               ++looks;
                               const auto soFar = unfinished.soFar();
                               const Node shown = unfinished.folder("/r").value();
                               EXPECT_EQ(soFar.root.size, (soFar.fileCount - 2) * mega + 2);
                               EXPECT_EQ(shown.size, soFar.root.size);
                               EXPECT_EQ(shown.fileCount, soFar.fileCount);
                               EXPECT_EQ(shown.children.size(), 3U);  // "a" or "b" may wait
                               for (const Node& child : soFar.root.children) {
                                 if (!child.isDirectory) continue;
                                 EXPECT_EQ(unfinished.folder("/r/" + child.name)->size, child.size);
                                 EXPECT_EQ(shown.child(child.name)->size, child.size);
                               }
                               EXPECT_FALSE(unfinished.folder("/r/none"));
                             },
                         .lookInterval = std::chrono::hours{1},
                         .smallEntriesOfRoot = 1,
                         .listing = &listing});
  EXPECT_EQ(looks, 5);  // before the first folder, and at each full batch
  EXPECT_EQ(names(result->root), (Names{"b", "a", "small"}));
  EXPECT_EQ(result->root.size, 4 * std::ssize(many) * mega + 2);
}

TEST(StoppableScan, keepsWhatIsMeasuredWhenItStops) {
  const std::vector<Entry> many(DiskScanner::entriesPerPoll, fileEntry("same", mega));
  const FakeFolder root{.batches = {many, many, many, {folderEntry("a")}},
                        .subfolders = {{"a", {.batches = {many}}}}};
  for (int looks = 0; looks < 5; ++looks) {
    FakeListing listing{root};
    StoppableScan stoppable{[left = looks]() mutable { return left-- <= 0; }};
    DiskScanner::Arguments arguments{
        .root = "/r", .minNodeSize = 20 * mega, .lookInterval = std::chrono::hours{1}, .listing = &listing};
    stoppable.watch(arguments);
    const auto whole = DiskScanner::scan(arguments);
    const auto part = stoppable.takePart();
    ASSERT_EQ(whole.has_value(), looks == 4) << "it looks at each full batch";
    ASSERT_EQ(part.has_value(), looks < 4);
    if (!part) continue;
    EXPECT_EQ(part->fileCount, std::ssize(many) * (looks + 1));
    EXPECT_EQ(part->root.size, part->fileCount * mega);
  }
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

TEST(ReadAhead, opensFoldersSideBySide) {
  FakeFolder root{.batches = {{}}};
  Names names;
  for (int i = 0; i < 60; ++i) names.push_back(std::to_string(i));
  for (const std::string& name : names) {
    root.batches[0].push_back(folderEntry(name.c_str()));
    root.subfolders[name];
  }
  // At first one helper works; then there are found to be two.
  std::latch met{2};
  std::atomic<int> openings = 0;
  FakeListing listing{root, [&] {
                        const int number = ++openings;
                        if (number == 30 || number == 31) met.arrive_and_wait();
                      }};
  ReadAheadListing ahead{listing, {.depth = {.processors = 2, .most = 2}}, {}};
  const auto result =
      DiskScanner::scan({.root = "/r", .manner = always(ScanManner::quiet), .listing = &ahead});
  EXPECT_EQ(result->root.children.size(), names.size());  // or it hangs
}

// A disk that answers so many requests at once; further ones wait in its queue.
struct FakeDisk {
  unsigned atOnce;
  double cachedShare = 0;
};

// How many helpers list at the same time after so many folders.
unsigned depthFound(const FakeDisk& disk, unsigned queue, int folders = 5'000) {
  ReadAheadDepth depth{{.processors = 2, .most = queue}};
  std::mt19937 random{1};
  for (int i = 0; i < folders; ++i) {
    const std::size_t names = random() % 40;
    const bool isCached = static_cast<double>(random() % 100) < disk.cachedShare * 100;
    const double reads = 2 + static_cast<double>(names) / 16;
    const double microseconds = isCached ? 20 : reads * 100 * std::max(1.0, 1.0 * depth.now() / disk.atOnce);
    const double varied = microseconds * static_cast<double>(80 + random() % 40) / 100;
    depth.note({.names = names,
                .elapsed = std::chrono::nanoseconds{static_cast<std::int64_t>(varied * 1e3)},
                .hasWaited = !isCached});
  }
  return depth.now();
}

TEST(ReadAheadDepth, isWhatTheDiskAnswersAtOnce) {
  const unsigned all = ReadAheadDepth::highest;
  EXPECT_EQ(depthFound({.atOnce = 1}, all, 100), 1U);
  EXPECT_EQ(depthFound({.atOnce = 8}, all), 8U);
  EXPECT_EQ(depthFound({.atOnce = 500}, all), all);
  EXPECT_EQ(depthFound({.atOnce = 500}, 500), all);
  EXPECT_EQ(depthFound({.atOnce = 500}, 4), 4U) << "the queue is full";
  EXPECT_EQ(depthFound({.atOnce = 500}, 0), 1U);
  EXPECT_EQ(depthFound({.atOnce = 500, .cachedShare = 0.5}, all), all);
  EXPECT_EQ(depthFound({.atOnce = 500, .cachedShare = 1}, all), 2U) << "one for each processor";
  EXPECT_EQ(depthFound({.atOnce = 500}, all, 500), all) << "found out by the first reads";
}

TEST(FoundSoFar, hasTheLargestItemsAndTheOneThatGrows) {
  const FakeFolder root{
      .batches = {{folderEntry("last"), folderEntry("late"), folderEntry("early"),
                   fileEntry("f", 30 * mega)}},
      .subfolders = {{"last", {}},
                     {"early", {.batches = {{fileEntry("g", 40 * mega)}}}},
                     {"late",
                      {.batches = {{folderEntry("a"), folderEntry("b")}, {fileEntry("h", 10 * mega)}},
                       .subfolders = {{"a", {}}, {"b", {.batches = {{fileEntry("i", mega)}}}}}}}}};
  FakeListing listing{root};
  std::vector<FoundSoFar> found;
  // The walk looks before each folder, however few entries there were.
  DiskScanner::scan(
      {.root = "/r",
       .minNodeSize = 20 * mega,
       .manner = always(ScanManner::waiting),
       .look = [&](const DiskScanner::Unfinished& scan) { found.push_back(FoundSoFar::in(scan, "/r")); },
       .lookInterval = 0ms,
       .listing = &listing});
  ASSERT_EQ(found.size(), 5U);  // early, late, b, a, last
  EXPECT_EQ(found[0], (FoundSoFar{.bytes = 30 * mega, .items = {{"f", 30 * mega, false}}}));
  EXPECT_EQ(found[3],
            (FoundSoFar{
                .bytes = 81 * mega,
                .items = {{"early", 40 * mega}, {"f", 30 * mega, false}, {"late", 11 * mega, true, true}}}));
}

TEST(DiskScanner, countsToTheLargestNumberWhateverAFileSystemSays) {
  constexpr Bytes most = std::numeric_limits<Bytes>::max();
  EXPECT_EQ(scanned({.batches = {{fileEntry("a", most), fileEntry("b", most)}}}).root.size, most);
}

using support::file;
using support::folder;

// Answers what a test sets, and remembers what it was asked.
class FakeJournal final : public EventJournal {
 public:
  std::uint64_t currentEventID(const JournalQuery&) override {
    order += "id ";
    return id;
  }
  std::expected<FolderChanges, JournalError> changes(const JournalQuery& query) override {
    order += "changes ";
    asked = query;
    return answer;
  }

  std::expected<MeasuredChanges, JournalError> measuredChanges(const JournalQuery&) override {
    order += "sizes ";
    return measured;
  }

  std::uint64_t id = 70;
  std::expected<FolderChanges, JournalError> answer;
  std::expected<MeasuredChanges, JournalError> measured = std::unexpected(JournalError::tooManyChanges);
  JournalQuery asked;
  std::string order;
};

Snapshot homeOfAnn() {
  return {.root = folder("/Users/ann", {folder("Documents", {file("a", 50)}),
                                        folder("Downloads", {file("b", 40), folder("old", {file("c", 30)})}),
                                        folder("Library", {folder("Caches", {file("d", 20)})}),
                                        folder("Empty", {}), file("notes", 10)}),
          .eventID = 50,
          .fullScanDate = Date{100h}};
}

bool isReused(const DiskScanner::Reuse& reuse, const std::string& path) {
  return reuse(path) != nullptr;
}

TEST(ReuseUnchanged, reusesWhatIsNeitherChangedNorOnTheWayToAChange) {
  const auto reuse = EarlierScan(homeOfAnn(), {.directories = {"/Users/ann/Downloads"}}).reuse();
  EXPECT_FALSE(isReused(reuse, "/Users/ann/Downloads"));
  EXPECT_EQ(*reuse("/Users/ann/Downloads/old"), *homeOfAnn().nodeAt("/Users/ann/Downloads/old"));
  EXPECT_EQ(*reuse("/Users/ann/Documents"), *homeOfAnn().nodeAt("/Users/ann/Documents"));
  EXPECT_FALSE(isReused(reuse, "/Users/ann"));
  EXPECT_FALSE(isReused(reuse, "/Users/ann/Empty"));  // no files
  EXPECT_FALSE(isReused(reuse, "/Users/ann/Music"));  // was too small to be kept
  EXPECT_FALSE(isReused(reuse, "/Users/ann/notes"));
  EXPECT_FALSE(isReused(reuse, "/Users/annex/Documents"));
}

TEST(ReuseUnchanged, reusesNothingInAChangedTree) {
  const auto reuse = EarlierScan(homeOfAnn(), {.trees = {"/Users/ann/Library"}}).reuse();
  EXPECT_FALSE(isReused(reuse, "/Users/ann/Library"));
  EXPECT_FALSE(isReused(reuse, "/Users/ann/Library/Caches"));
  EXPECT_TRUE(isReused(reuse, "/Users/ann/Downloads"));
  for (const char* root : {"/Users/ann", "/Users"}) {
    const auto none = EarlierScan(homeOfAnn(), {.trees = {root}}).reuse();
    EXPECT_EQ(isReused(none, "/Users/ann/Downloads"), std::string{root} == "/Users");
  }
  Snapshot disk{.root = folder("/", {folder("home", {file("a", 1)})})};
  EXPECT_TRUE(isReused(EarlierScan(disk, {.directories = {"/"}}).reuse(), "/home"));
  EXPECT_FALSE(isReused(EarlierScan(disk, {.trees = {"/"}}).reuse(), "/home"));
}

TEST(ReuseUnchanged, takesNoFolderForAnotherThatOnlyLooksLikeIt) {
  const Snapshot snapshot{
      .root = folder("/r", {folder("caf\u00e9", {file("a", 1)}), folder("bad\ufffd", {file("b", 1)})})};
  const auto reuse = EarlierScan(snapshot, {}).reuse();
  EXPECT_TRUE(isReused(reuse, "/r/caf\u00e9"));
  EXPECT_FALSE(isReused(reuse, "/r/cafe\u0301"));
  EXPECT_FALSE(isReused(reuse, "/r/bad\xff"));
  EXPECT_FALSE(isReused(reuse, "/r/bad\ufffd"));  // may be what stands for other bytes
}

TEST(ReuseUnchanged, spellsPathsAsTheTreeDoes) {
  const std::string data = "/System/Volumes/Data";
  const Snapshot disk{.root = folder(data, {folder("x", {file("a", 1)}), folder("y", {file("b", 1)}),
                                            folder("z", {file("c", 1)})})};
  const auto reuse = EarlierScan(disk, {.directories = {"/x/"}, .trees = {data + "/y"}}).reuse();
  EXPECT_FALSE(isReused(reuse, data + "/x"));
  EXPECT_FALSE(isReused(reuse, data + "/y"));
  EXPECT_TRUE(isReused(reuse, data + "/z"));
  EXPECT_FALSE(isReused(EarlierScan(disk, {.trees = {"/"}}).reuse(), data + "/z"));
}

class ScanPlanTest : public testing::Test {
 protected:
  ScanPlan plan(Snapshot earlier = homeOfAnn()) {
    arguments.earlier = std::move(earlier);
    return ScanPlan::make(journal, arguments);
  }
  std::string whyFull(void (*edit)(Snapshot&)) {
    Snapshot earlier = homeOfAnn();
    edit(earlier);
    const ScanPlan made = plan(std::move(earlier));
    EXPECT_FALSE(made.reuse);
    EXPECT_EQ(made.fullScanDate, arguments.now);
    return made.whyFull;
  }

  FakeJournal journal;
  ScanPlan::Arguments arguments{.root = "/Users/ann", .now = Date{150h}};
};

TEST_F(ScanPlanTest, reusesTheEarlierScanWhereTheJournalAnswers) {
  const ScanPlan made = plan();
  EXPECT_EQ(made.whyFull, "");
  EXPECT_EQ(made.fullScanDate, Date{100h});
  EXPECT_EQ(made.eventID, 70U);
  EXPECT_EQ(journal.asked.since, 50U);
  EXPECT_EQ(journal.order, "id sizes changes ");  // a change between the two calls is in the next answer
  ASSERT_TRUE(made.reuse);
  EXPECT_TRUE(isReused(made.reuse, "/Users/ann/Library"));
}

TEST_F(ScanPlanTest, updatesTheEarlierScanWhereTheJournalKnowsTheSizes) {
  journal.measured = MeasuredChanges{};
  ScanPlan made = plan();
  EXPECT_EQ(journal.order, "id sizes ");
  EXPECT_EQ(made.fullScanDate, Date{100h});
  EXPECT_EQ(made.scan({.root = "/Users/ann"})->root, homeOfAnn().root);  // nothing changed
  // A subfolder of an unchanged folder, and a tree that is too deep.
  journal.measured->folders = {{.kind = MeasuredChanges::Kind::same}, {.name = "a"}};
  EXPECT_FALSE(plan().update);
  journal.measured->folders = {{.kind = MeasuredChanges::Kind::listed}};
  for (std::uint32_t i = 0; i < Node::maximumDepth; ++i) {
    journal.measured->folders.push_back({.parent = i, .kind = MeasuredChanges::Kind::listed, .name = "a"});
  }
  EXPECT_FALSE(plan().update);
  EXPECT_TRUE(plan().reuse);
}

TEST(ScanUpdate, keepsTheOrderOfEqualsAndScansWhatItCannotTakeOver) {
  using Kind = MeasuredChanges::Kind;
  Snapshot earlier{.root =
                       folder("/r", {folder("b", {file("x", 5)}), file("a", 5),
                                     folder("other", {file("y", 4)}), folder("bad\ufffd", {file("z", 3)})})};
  const MeasuredChanges changes{
      .folders = {{.kind = Kind::listed, .size = 36, .fileCount = 6},
                  {.kind = Kind::same, .size = 9, .fileCount = 1, .name = "other"},
                  {.kind = Kind::same, .size = 3, .fileCount = 1, .name = "bad\xff"},
                  {.kind = Kind::same, .size = 5, .fileCount = 1, .name = "b"},
                  {.kind = Kind::unknown, .name = "closed"}},
      .files = {{.name = "new", .size = 5}, {.name = "a", .size = 5}, {.name = "large", .size = 9}}};
  FakeListing disk{{.subfolders = {{"other", {.batches = {{fileEntry("y", 8)}}}},
                                   {"bad\xff", {.batches = {{fileEntry("z", 2)}}}}},
                    .openErrors = {{"closed", EACCES}}}};
  const auto result =
      ScanUpdate{.earlier = std::move(earlier), .changes = changes}.run({.root = "/r", .listing = &disk});
  ASSERT_TRUE(result);
  EXPECT_EQ(names(result->root), (Names{"large", "other", "b", "a", "new", "bad\xff"}));
  EXPECT_EQ(result->root.size, 36 - 9 - 3 + 8 + 2);
  EXPECT_EQ(result->fileCount, 6);
  EXPECT_EQ(result->coverage.unread, (Unread{.folders = 1, .paths = {"/r/closed"}}));
}

TEST_F(ScanPlanTest, everyDoubtIsAFullScanThatSaysWhy) {
  EXPECT_EQ(whyFull([](Snapshot& scan) { scan.root.name = "/Users"; }),
            "the last scan was of another folder");
  EXPECT_EQ(whyFull([](Snapshot& scan) { scan.minNodeSize = 9; }), "the last scan used another --min-size");
  for (const auto unrecorded :
       {+[](Snapshot& scan) { scan.eventID.reset(); }, +[](Snapshot& scan) { scan.eventID = 0; }}) {
    EXPECT_EQ(whyFull(unrecorded), "nothing recorded changes at the last scan");
  }
  EXPECT_EQ(whyFull([](Snapshot& scan) { scan.fullScanDate = Date{150h} - 72h; }),
            "the last full scan is three days old");
  Snapshot justYoungEnough = homeOfAnn();
  justYoungEnough.fullScanDate = Date{150h} - 72h + 1us;
  EXPECT_TRUE(plan(justYoungEnough).reuse);
  journal.order.clear();
  EXPECT_EQ(whyFull([](Snapshot& scan) { scan.fullScanDate = Date{151h}; }),
            "the last full scan is dated in the future");  // the clock was set back
  for (const auto unfit :
       {+[](Snapshot& scan) { scan.format = 2; }, +[](Snapshot& scan) { scan.format.reset(); },
        +[](Snapshot& scan) { scan.fullScanDate.reset(); },
        +[](Snapshot& scan) { scan.root.fileCount = 0; }}) {
    EXPECT_EQ(whyFull(unfit), "the last scan is incomplete or from another version");
  }
  EXPECT_EQ(journal.order.find("changes"), std::string::npos);

  journal.answer = std::unexpected(JournalError::unmounted);
  journal.id = 0;
  EXPECT_EQ(whyFull([](Snapshot&) {}), "its volume was unmounted");
  EXPECT_EQ(plan().eventID, std::nullopt);
  arguments.mayReuse = false;
  EXPECT_EQ(whyFull([](Snapshot&) {}), "that was asked for");
  arguments.mayReuse = true;
  arguments.earlier.reset();
  EXPECT_EQ(ScanPlan::make(journal, arguments).whyFull, "there is no earlier scan");
}

constexpr Date now{1'700'000'000s};

TEST(ScanTiming, saysHowFarAScanIs) {
  using namespace ScanTiming;
  EXPECT_EQ(fraction(10, 0), std::nullopt);
  EXPECT_EQ(fraction(25, 100), 0.25);
  EXPECT_EQ(fraction(200, 100), 0.99);
  EXPECT_EQ(remaining({1, 50}, {.bytes = 100}, 5s), std::nullopt);
  EXPECT_EQ(remaining({1, 3}, {.bytes = 100}, 60s), std::nullopt);
  EXPECT_EQ(remaining({1, 25}, {}, 60s), std::nullopt);
  EXPECT_EQ(remaining({1, 25}, {.bytes = 100}, 60s), Seconds{180});
  EXPECT_EQ(remaining({1, 25}, {.bytes = 100, .files = 2}, 60s), Seconds{60});
}

TEST(ScanTiming, expectsWhatTheLastScanFoundOrTheVolumeHolds) {
  const Snapshot last{.root = folder("/home", {file("a", 10)}), .fileCount = 1};
  const auto expectedBytes = [&](const char* root, const std::vector<VolumeReading>& volumes) {
    return ScanTiming::expected(&last, root, VolumeStatus{"Disk", 100, 30}, volumes).bytes;
  };
  EXPECT_EQ(expectedBytes("/home", {}), 10);
  EXPECT_EQ(ScanTiming::expected(&last, "/home", std::nullopt, {}).files, 1);
  EXPECT_EQ(expectedBytes("/", {}), 70);
  const std::vector<VolumeReading> volumes{
      {{}, Space{.used = 70}}, {{.isRemovable = true}, Space{.used = 9}}, {}, {{}, Space{.used = 5}}};
  EXPECT_EQ(expectedBytes("/", volumes), 75);
  EXPECT_EQ(ScanTiming::expected(nullptr, "/", std::nullopt, {}).bytes, 0);
}

TEST(ScanTiming, isStaleWhenOlderThanTheLimitOrOfAnotherFolder) {
  const Snapshot scan{.date = now, .root = folder("/home", {})};
  const auto isStale = [](const Snapshot* snapshot, const char* root, Seconds age) {
    return ScanTiming::isStale({.snapshot = snapshot,
                                .root = root,
                                .now = now + std::chrono::duration_cast<std::chrono::microseconds>(age),
                                .olderThan = Seconds{3'600}});
  };
  EXPECT_TRUE(isStale(nullptr, "/home", Seconds{0}));
  EXPECT_TRUE(isStale(&scan, "/", Seconds{0}));
  EXPECT_FALSE(isStale(&scan, "/home", Seconds{3'600}));
  EXPECT_TRUE(isStale(&scan, "/home", Seconds{3'600.001}));
  EXPECT_TRUE(isStale(&scan, "/home", Seconds{-1})) << "a scan of a time to come is of an unknown age";
  const Snapshot ancient{.date = Date::min(), .root = folder("/home", {})};
  EXPECT_TRUE(isStale(&ancient, "/home", Seconds{0}));
}

}  // namespace
}  // namespace spacemint
