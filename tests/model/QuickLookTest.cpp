// When the current scan is brought up to date between two scans, and what becomes of that.

#include "support/ModelFixture.h"

namespace spacemint {
namespace {

using namespace support;
using testing::SizeIs;

class QuickLookTest : public ModelFixture {
 protected:
  // A scan of the home folder is stored that a recorder could update; nothing changed since.
  void haveScan() {
    Preferences{defaults}.setHasStarted(true);
    journal.id = 7;
    storeScan(morning - 30min);
    Snapshot scan = store.load(store.entries().front()).value();
    scan.eventID = 5;
    for (const ListedPlace& place : hostListingPlaces(home)) scan.coverage.places.push_back({place, 0});
    ASSERT_TRUE(store.save(scan));
    journal.measured = MeasuredChanges{};
    startModel();
    journal.measurements = 0;
  }
  // From now on the recorder has a new file of this size, beside the one of the scan.
  void grow(Bytes size) {
    const Node& root = model->history().snapshot()->root;
    journal.measured = MeasuredChanges{
        .folders = {{.kind = MeasuredChanges::Kind::listed, .size = root.size + size, .fileCount = 2}},
        .files = {{.name = "old", .size = root.size}, {.name = "new", .size = size}}};
  }
  std::string shown() const {
    return desktop.notifier.posted.empty() ? "" : desktop.notifier.posted.back().body;
  }
};

TEST_F(QuickLookTest, showsWhatThePanelWouldMissAndKeepsTheHistory) {
  haveScan();
  const SharedSnapshot before = model->history().snapshot();
  model->panelWillShow();
  desktop.settle();
  EXPECT_GE(journal.measurements, 1);
  EXPECT_EQ(model->history().snapshot(), before) << "nothing changed";
  EXPECT_FALSE(model->history().updatedAt());

  grow(900 * MB);
  model->panelWillShow();
  desktop.settle();
  EXPECT_EQ(sizeInScan("new"), 900 * MB);
  EXPECT_EQ(model->history().updatedAt(), desktop.clock.now());
  EXPECT_EQ(model->history().snapshot()->date, before->date);
  EXPECT_EQ(model->history().snapshot()->eventID, 7U);
  ASSERT_THAT(store.entries(), SizeIs(1));
  EXPECT_EQ(store.load(store.entries().front())->root, before->root);
  EXPECT_EQ(model->currentFindings().findings().largestFiles.size(), 2U);

  model->scans().scan();
  desktop.settle();
  EXPECT_FALSE(model->history().updatedAt());
}

TEST_F(QuickLookTest, looksWhenTheFreeSpaceFell) {
  haveScan();
  for (const auto& [lost, looks] :
       {std::pair{499 * MB, 0}, {2 * MB, 1}, {499 * MB / 2, 1}, {-GB, 1}, {600 * MB, 2}}) {
    desktop.volume.current->free -= lost / MB * 1'000'000;
    desktop.advance(VolumeWatch::timing.interval);
    EXPECT_EQ(journal.measurements, looks) << lost;
  }
}

TEST_F(QuickLookTest, looksBeforeAWarningAndWarnsWithoutALookToo) {
  haveScan();
  // The scan of the day before is what growth is measured against.
  storeScan(morning - 24h);
  startModel();
  grow(5 * GB);
  desktop.volume.current->free = 15 * GB;
  desktop.advance(1min);
  ASSERT_THAT(desktop.notifier.posted, SizeIs(1));
  EXPECT_NE(shown().find("new"), std::string::npos) << shown();

  journal.measured = std::unexpected(JournalError::eventsLost);
  desktop.volume.current->free = 5 * GB;
  desktop.advance(1min);
  EXPECT_THAT(desktop.notifier.posted, SizeIs(2));
}

TEST_F(QuickLookTest, dropsAnUpdateOfAScanThatChangedMeanwhile) {
  haveScan();
  grow(900 * MB);
  desktop.tasks.hold(Tasks::Priority::userInitiated);
  model->panelWillShow();
  desktop.settle();
  desktop.tasks.runHeldWork(Tasks::Priority::userInitiated);
  model->history().edit(inHome("old"), [&](Snapshot& scan) { return scan.remove(inHome("old")); });
  desktop.tasks.release(Tasks::Priority::userInitiated);
  desktop.settle();
  EXPECT_EQ(sizeInScan("new"), 0);
  EXPECT_EQ(sizeInScan("old"), 0);
}

}  // namespace
}  // namespace spacemint
