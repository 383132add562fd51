#include "core/scan/ScanPlan.h"

#include "support/TreeBuilder.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

using namespace std::chrono_literals;
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

  std::uint64_t id = 70;
  std::expected<FolderChanges, JournalError> answer;
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
  return reuse(path).has_value();
}

TEST(ReuseUnchanged, reusesWhatIsNeitherChangedNorOnTheWayToAChange) {
  const auto reuse = reuseUnchanged(homeOfAnn(), {.directories = {"/Users/ann/Downloads"}});
  EXPECT_FALSE(isReused(reuse, "/Users/ann/Downloads"));
  EXPECT_EQ(reuse("/Users/ann/Downloads/old"), *homeOfAnn().nodeAt("/Users/ann/Downloads/old"));
  EXPECT_EQ(reuse("/Users/ann/Documents"), *homeOfAnn().nodeAt("/Users/ann/Documents"));
  EXPECT_FALSE(isReused(reuse, "/Users/ann"));
  EXPECT_FALSE(isReused(reuse, "/Users/ann/Empty"));  // no files
  EXPECT_FALSE(isReused(reuse, "/Users/ann/Music"));  // was too small to be kept
  EXPECT_FALSE(isReused(reuse, "/Users/ann/notes"));
  EXPECT_FALSE(isReused(reuse, "/Users/annex/Documents"));
}

TEST(ReuseUnchanged, reusesNothingInAChangedTree) {
  const auto reuse = reuseUnchanged(homeOfAnn(), {.trees = {"/Users/ann/Library"}});
  EXPECT_FALSE(isReused(reuse, "/Users/ann/Library"));
  EXPECT_FALSE(isReused(reuse, "/Users/ann/Library/Caches"));
  EXPECT_TRUE(isReused(reuse, "/Users/ann/Downloads"));
  for (const char* root : {"/Users/ann", "/Users"}) {
    const auto none = reuseUnchanged(homeOfAnn(), {.trees = {root}});
    EXPECT_EQ(isReused(none, "/Users/ann/Downloads"), std::string{root} == "/Users");
  }
  Snapshot disk{.root = folder("/", {folder("home", {file("a", 1)})})};
  EXPECT_TRUE(isReused(reuseUnchanged(disk, {.directories = {"/"}}), "/home"));
  EXPECT_FALSE(isReused(reuseUnchanged(disk, {.trees = {"/"}}), "/home"));
}

TEST(ReuseUnchanged, takesNoFolderForAnotherThatOnlyLooksLikeIt) {
  const Snapshot snapshot{
      .root = folder("/r", {folder("caf\u00e9", {file("a", 1)}), folder("bad\ufffd", {file("b", 1)})})};
  const auto reuse = reuseUnchanged(snapshot, {});
  EXPECT_TRUE(isReused(reuse, "/r/caf\u00e9"));
  EXPECT_FALSE(isReused(reuse, "/r/cafe\u0301"));
  EXPECT_FALSE(isReused(reuse, "/r/bad\xff"));
  EXPECT_FALSE(isReused(reuse, "/r/bad\ufffd"));  // may be what stands for other bytes
}

TEST(ReuseUnchanged, spellsPathsAsTheTreeDoes) {
  const std::string data = "/System/Volumes/Data";
  const Snapshot disk{.root = folder(data, {folder("x", {file("a", 1)}), folder("y", {file("b", 1)}),
                                            folder("z", {file("c", 1)})})};
  const auto reuse = reuseUnchanged(disk, {.directories = {"/x/"}, .trees = {data + "/y"}});
  EXPECT_FALSE(isReused(reuse, data + "/x"));
  EXPECT_FALSE(isReused(reuse, data + "/y"));
  EXPECT_TRUE(isReused(reuse, data + "/z"));
  EXPECT_FALSE(isReused(reuseUnchanged(disk, {.trees = {"/"}}), data + "/z"));
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
  EXPECT_EQ(journal.order, "id changes ");  // a change between the two calls is in the next answer
  ASSERT_TRUE(made.reuse);
  EXPECT_TRUE(isReused(made.reuse, "/Users/ann/Library"));
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

}  // namespace
}  // namespace spacemint
