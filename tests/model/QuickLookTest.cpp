// When the current scan is brought up to date between two scans, and what becomes of that.

#include "core/scan/ProcessJournal.h"
#include "support/ModelFixture.h"

#include <filesystem>

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

// With a real recorder, of which a restarted program has none until it scans.
TEST_F(QuickLookTest, seesWhatGrowsSoonAfterARestartOnceTheBatteryIsNotLow) {
  for (const char* name : {"meet", "state"}) std::filesystem::create_directories(folder / name);
  std::filesystem::permissions(folder / "meet", std::filesystem::perms::owner_all);
  const EventRecorder::Options options{.endpointFolder = folder / "meet", .stateFolder = folder / "state"};
  std::optional<ProcessJournal> recording{options};
  Preferences{defaults}.setHasStarted(true);
  addFile("since the scan", 30 * MB);
  storeScan(morning - 1h);
  const auto stored = store.entries();
  makeModel(*recording, desktop.desktop()).start();
  desktop.scheduler.isGood = false;
  desktop.advance(10min);
  EXPECT_FALSE(model->growing().isKnown());
  EXPECT_EQ(sizeInScan("old"), 300 * MB);

  desktop.scheduler.isGood = true;
  desktop.tasks.hold(Tasks::Priority::background);
  desktop.advance(2min);
  desktop.tasks.runHeldWork(Tasks::Priority::background);
  EXPECT_FALSE(model->scans().isScanning()) << "it is not shown";
  desktop.tasks.release(Tasks::Priority::background);
  desktop.advance(1min);
  EXPECT_EQ(sizeInScan("old"), 0);
  EXPECT_EQ(sizeInScan("since the scan"), 30 * MB);
  EXPECT_EQ(store.entries(), stored);
  EXPECT_EQ(model->history().snapshot()->date, stored.front().date);

  addFile("grows", 200 * MB);
  desktop.volume.current->free -= 600 * MB;
  desktop.advance(1min);
  ASSERT_THAT(model->growing().lines(), SizeIs(1));
  EXPECT_EQ(model->growing().lines()[0].path, inHome("grows"));
  EXPECT_EQ(sizeInScan("grows"), 200 * MB) << "a quick look";

  // Another restart; a scan that begins meanwhile takes its place.
  model.reset();
  recording.emplace(options);
  makeModel(*recording, desktop.desktop()).start();
  desktop.tasks.hold(Tasks::Priority::background);
  desktop.advance(AppModel::launchScanDelay);
  model->scans().scan();
  desktop.tasks.release(Tasks::Priority::background);
  desktop.settle();
  EXPECT_THAT(store.entries(), SizeIs(2));
  EXPECT_FALSE(model->history().updatedAt());
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
