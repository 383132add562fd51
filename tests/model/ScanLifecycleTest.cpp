// When scans run, how they end, and what becomes of what was going on meanwhile.

#include "support/ModelFixture.h"
#include "support/TreeBuilder.h"

#include <filesystem>
#include <fstream>

namespace spacemint {
namespace {

using namespace support;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
namespace fs = std::filesystem;

class ScanLifecycleTest : public ModelFixture {
 protected:
  void SetUp() override { addFile("big", 30 * MB); }
  void haveStarted() { Preferences{defaults}.setHasStarted(true); }
  std::size_t storedScans() const { return store.entries().size(); }
};

TEST_F(ScanLifecycleTest, nothingScansBeforeTheUserBegins) {
  startModel();
  desktop.advance(24h);
  model->prefs().setScope(ScanScope::disk);
  model->preferencesChanged();
  desktop.volume.current->free = 1 * GB;
  desktop.advance(1h);
  EXPECT_EQ(storedScans(), 0U);
  EXPECT_THAT(desktop.notifier.posted, SizeIs(1));
  EXPECT_EQ(desktop.notifier.requests, 0);
  EXPECT_EQ(desktop.scheduler.begun, desktop.scheduler.finished);
}

TEST_F(ScanLifecycleTest, opensAFolderThatIsInTheScanOrCanBeMeasured) {
  storeHome(morning - 1h, {support::folder("Films", {file("a.mov", GB)})});
  addFile("new/big", 30 * MB);
  makeModel();
  model->openFolder(inHome("Films"));  // before the stored scan is read
  EXPECT_EQ(model->folderPath(), std::nullopt);
  model->start();
  desktop.settle();
  EXPECT_EQ(model->folderPath(), inHome("Films"));
  EXPECT_EQ(model->tab(), Tab::folders);
  model->openFolder(inHome("new"));
  desktop.settle();
  EXPECT_EQ(model->folderPath(), inHome("new"));
  EXPECT_EQ(sizeInScan("new/big"), 30 * MB);
  model->openFolder("/srv");
  EXPECT_EQ(model->folderPath(), inHome("new"));
  EXPECT_EQ(message(), "/srv is not in the scanned folder.");
  // A file that is opened while a folder waits for the scan stays.
  makeModel();
  model->openFolder(inHome("Films"));
  model->open(store.entries().front().path);
  model->start();
  desktop.settle();
  EXPECT_FALSE(model->shown().isOfHere());
}

TEST_F(ScanLifecycleTest, leavesOutWhatTheSettingsSay) {
  haveStarted();
  addFile("films/a.mov", 40 * MB);
  startModel();
  model->scans().scan();
  desktop.settle();
  desktop.advance(1min);
  model->prefs().setExcludes({"films", "[wrong"});
  model->scans().scan();
  desktop.settle();
  EXPECT_EQ(sizeInScan("films"), 0);
  const Coverage& coverage = model->history().snapshot()->coverage;
  EXPECT_THAT(coverage.excludes, ElementsAre("films"));
  EXPECT_EQ(coverage.excludedBelow(home).size, 40 * MB);
  EXPECT_TRUE(model->findings().baselineLeftOutOthers);
  EXPECT_THAT(model->findings().shrinkage, IsEmpty());
}

TEST_F(ScanLifecycleTest, comparesWithTheNearestScanThatLeftOutTheSame) {
  const Coverage others{.excludes = {"films"}};
  storeHome(morning - 75h, {file("old", 300 * MB)}, 120 * GB, others);
  storeHome(morning - 26h, {file("old", 300 * MB), file("films", GB)});
  storeHome(morning - 1h, {file("old", 300 * MB), file("new", 200 * MB)}, 120 * GB, others);
  startModel();
  const auto entries = model->history().entries();
  EXPECT_EQ(model->history().baselineEntry(), entries.at(2));
  EXPECT_THAT(model->findings().growth, SizeIs(1));
  model->history().setBaselineEntry(entries.at(1));
  desktop.settle();
  EXPECT_EQ(model->history().baselineEntry(), entries.at(1)) << "the user chose it";
  EXPECT_TRUE(model->findings().baselineLeftOutOthers);
}

TEST_F(ScanLifecycleTest, beginningScansWhatMayBeSeen) {
  for (const bool access : {true, false}) {
    hasAccess = access;
    fs::remove(folder / "settings.json");
    defaults.set("scope", "home");
    startModel();
    model->begin();
    EXPECT_TRUE(model->scans().isScanning());
    desktop.volume.current->free -= GB;
    desktop.settle();
    EXPECT_FALSE(model->scans().isScanning());
    EXPECT_EQ(model->volume().status(), desktop.volume.current) << "the summary keeps up with the scan";
    EXPECT_EQ(model->prefs().scope(), access ? ScanScope::disk : ScanScope::home);
    ASSERT_TRUE(model->history().snapshot());
    EXPECT_EQ(model->history().snapshot()->rootPath(), access ? folder.path() : home);
    EXPECT_TRUE(model->prefs().hasStarted());
    desktop.advance(1s);
  }
  EXPECT_EQ(desktop.notifier.requests, 2);
}

// What there is at the start, and when the first scan begins; never within the time that is looked at is 0.
TEST_F(ScanLifecycleTest, scansAfterTheLaunchWhenThatIsDue) {
  struct Case {
    const char* name;
    std::optional<std::chrono::minutes> age;
    Bytes free;
    std::chrono::seconds begins;
  };
  const Case cases[]{{"no scan yet", {}, 100 * GB, 180s},
                     {"a fresh scan", 30min, 100 * GB, 0s},
                     {"exactly as old as may be", 6h, 100 * GB, 0s},
                     {"older than the interval", 7h, 100 * GB, 180s},
                     {"little space and a fresh scan", 59min, 5 * GB, 0s},
                     {"little space and an older scan", 61min, 5 * GB, 1s}};
  haveStarted();
  for (const Case& c : cases) {
    fs::remove_all(store.directory);
    if (c.age) storeScan(desktop.clock.now() - *c.age);
    desktop.volume.current->free = c.free;
    const std::size_t before = storedScans();
    startModel();
    if (c.begins == 180s) {
      desktop.advance(179s);
      EXPECT_EQ(storedScans(), before) << c.name;
      desktop.advance(1s);
    }
    EXPECT_EQ(storedScans(), before + (c.begins > 0s ? 1U : 0U)) << c.name;
    desktop.advance(200s);
    EXPECT_EQ(storedScans(), before + (c.begins > 0s ? 1U : 0U)) << c.name;
  }
}

TEST_F(ScanLifecycleTest, scansInTheBackgroundWhenHalfAnIntervalHasPassed) {
  haveStarted();
  storeScan(morning);
  startModel();
  desktop.advance(6h);
  EXPECT_EQ(store.entries().front().date, morning + 6h);
  desktop.advance(4h);
  model->scans().scan();
  desktop.advance(2h);
  EXPECT_EQ(desktop.scheduler.finished, 3) << "also the one after the launch";
  EXPECT_EQ(store.entries().front().date, morning + 10h) << "two hours after a scan there is no other";
}

TEST_F(ScanLifecycleTest, scansOnWhenTheClockJumps) {
  haveStarted();
  storeScan(morning - 1h, 20 * MB);
  storeScan(morning + 300 * 24h, 40 * MB);
  startModel();
  EXPECT_EQ(model->history().snapshot()->root.size, 20 * MB) << "the newest scan up to now";
  desktop.advance(6h);
  EXPECT_EQ(model->history().snapshot()->date, morning + 6h);
  // Back: the scan of just now is one of a time to come.
  desktop.clock.setDate(morning - 72h);
  desktop.advance(6h);
  EXPECT_EQ(model->history().snapshot()->date, morning - 66h);
  EXPECT_EQ(model->history().entries().front().date, morning - 66h);
  // Forward, and the same again after a restart.
  desktop.clock.setDate(morning + 48h);
  desktop.advance(6h);
  EXPECT_EQ(model->history().snapshot()->date, morning + 54h);
  startModel();
  EXPECT_EQ(model->history().snapshot()->date, morning + 54h);
  EXPECT_EQ(model->history().baselineEntry()->date, morning + 6h);
}

TEST_F(ScanLifecycleTest, measuresTheTimeOfAScanWithTheSteadyClock) {
  startModel();
  desktop.volume.current = VolumeStatus{"Disk", 160 * MB, 100 * MB};
  desktop.advance(60s);
  desktop.tasks.hold(Tasks::Priority::background);
  model->scans().scan();
  desktop.tasks.runHeldWork(Tasks::Priority::background);
  desktop.advance(30s);
  const auto remaining = model->scans().timeRemaining();
  ASSERT_TRUE(remaining);
  EXPECT_GT(*remaining, Seconds{0});
  for (const auto jump : {48h, -48h}) {
    desktop.clock.setDate(morning + jump);
    EXPECT_EQ(model->scans().timeRemaining(), remaining);
  }
}

TEST_F(ScanLifecycleTest, livesWithAnyNumbersOfStoredScans) {
  constexpr Bytes most = std::numeric_limits<Bytes>::max();
  for (const Bytes size : {std::numeric_limits<Bytes>::min(), most}) {
    fs::remove_all(store.directory);
    const auto save = [&](Date date, Bytes sizes) {
      Node cache = support::folder(".cache", {support::folder("pip", {file("a", 1)})});
      Node root = support::folder(home, {std::move(cache), file("b", 2), file("c", 3)});
      const auto setAll = [&](auto self, Node& node) -> void {
        node.size = sizes;
        for (Node& child : node.children) self(self, child);
      };
      setAll(setAll, root);
      ASSERT_TRUE(store.save({.date = date,
                              .root = std::move(root),
                              .fileCount = sizes,
                              .volumeFree = sizes,
                              .volumeTotal = sizes,
                              .minNodeSize = sizes,
                              .fullScanDate = date}));
    };
    save(morning - 26h, size);
    save(morning - 2h, size == most ? -5 : most);
    startModel();
    ASSERT_TRUE(model->history().snapshot());
    EXPECT_GE(model->history().snapshot()->root.size, 0);
    model->scans().scan();
    desktop.settle();
    EXPECT_EQ(model->history().snapshot()->date, desktop.clock.now());
  }
}

TEST_F(ScanLifecycleTest, schedulesAgainOnlyForAnotherInterval) {
  startModel();
  model->preferencesChanged();
  model->prefs().setScanIntervalHours(12);
  model->preferencesChanged();
  model->prefs().setScanIntervalHours(-1);
  model->preferencesChanged();
  ASSERT_THAT(desktop.scheduler.activities, SizeIs(3));
  EXPECT_STREQ(desktop.scheduler.activities[0].identifier, "app.spacemint.scan");
  EXPECT_EQ(desktop.scheduler.activities[0].interval, Seconds{6h});
  EXPECT_EQ(desktop.scheduler.activities[0].tolerance, Seconds{90min});
  EXPECT_EQ(desktop.scheduler.activities[1].interval, Seconds{12h});
  EXPECT_EQ(desktop.scheduler.activities[2].interval, Seconds{-1h});
}

TEST_F(ScanLifecycleTest, answersTheSchedulerAlsoForAScanThatIsCancelled) {
  haveStarted();
  storeScan(morning);
  startModel();
  desktop.advance(AppModel::launchScanDelay);
  desktop.tasks.hold(Tasks::Priority::background);
  desktop.advance(6h);
  EXPECT_EQ(desktop.scheduler.begun, 2);
  EXPECT_EQ(desktop.scheduler.finished, 1);
  model->scans().cancel();
  EXPECT_EQ(desktop.scheduler.finished, 2);
}

TEST_F(ScanLifecycleTest, keepsWhatAFirstScanMeasuredUntilItIsStopped) {
  addFile("top", 30 * MB);
  addFile("folder/below", 40 * MB);
  startModel();
  desktop.tasks.hold(Tasks::Priority::background);
  model->scans().scan();
  model->scans().stop();
  model->scans().stop();  // a double click
  desktop.tasks.runHeldWork(Tasks::Priority::background);
  desktop.settle();
  EXPECT_FALSE(model->scans().isScanning());
  ASSERT_TRUE(model->history().snapshot());
  EXPECT_GT(model->history().snapshot()->measuredPart.value(), 0);
  EXPECT_EQ(sizeInScan("top"), 30 * MB);
  EXPECT_EQ(sizeInScan("folder/below"), 0);
  EXPECT_TRUE(model->scans().isStale(999h));
  EXPECT_FALSE(model->account().hasFailed()) << "what a part lacks is in files after all";
  std::filesystem::remove(inHome("top"));
  model->history().remeasure({.paths = {inHome("top")}});
  desktop.settle();
  EXPECT_EQ(sizeInScan("top"), 0);
  EXPECT_EQ(storedScans(), 0U) << "a part is never stored";

  desktop.tasks.release(Tasks::Priority::background);
  desktop.settle();
  desktop.tasks.hold(Tasks::Priority::background);
  addFile("top", 30 * MB);
  model->scans().scan();
  desktop.tasks.runHeldWork(Tasks::Priority::background);
  desktop.settle();
  const FoundSoFar::Item top{"top", model->scans().found().items.at(0).size, false};
  EXPECT_THAT(model->scans().found().items, testing::Contains(top));
  model->scans().stop();
  EXPECT_TRUE(model->history().snapshot()->measuredPart) << "there is one already";
  desktop.tasks.release(Tasks::Priority::background);
  model->scans().scan();
  desktop.settle();
  EXPECT_FALSE(model->history().snapshot()->measuredPart);
  EXPECT_EQ(sizeInScan("folder/below"), 40 * MB);
  EXPECT_FALSE(model->history().baselineEntry());
}

TEST_F(ScanLifecycleTest, dropsWhatComesLateFromACancelledScan) {
  startModel();
  desktop.tasks.hold(Tasks::Priority::background);
  model->scans().scan();
  model->scans().scan();
  desktop.tasks.runHeldWork(Tasks::Priority::background);
  EXPECT_EQ(storedScans(), 1U) << "it was done before it was cancelled";
  model->scans().cancel();
  EXPECT_FALSE(model->scans().isScanning());
  addFile("more", 40 * MB);
  desktop.advance(1s);
  model->scans().scan();
  EXPECT_TRUE(model->scans().isScanning());
  desktop.tasks.release(Tasks::Priority::background);
  desktop.settle();
  EXPECT_EQ(sizeInScan("more"), 40 * MB);
  EXPECT_EQ(model->history().revision(), 1) << "one of the two was taken";
  EXPECT_EQ(message(), "");

  model->scans().scan();
  model->scans().cancel();
  desktop.settle();
  EXPECT_EQ(storedScans(), 2U) << "cancelled before it ran, it leaves nothing";
}

TEST_F(ScanLifecycleTest, followsTheScope) {
  haveStarted();
  storeScan(morning);
  startModel();
  model->setFolderPath(home);
  model->prefs().setWarningThresholdGB(30);
  model->preferencesChanged();
  EXPECT_FALSE(model->scans().isScanning());
  model->prefs().setScope(ScanScope::disk);
  model->preferencesChanged();
  EXPECT_TRUE(model->scans().isScanning());
  desktop.advance(1s);
  EXPECT_EQ(model->history().snapshot()->rootPath(), folder.path());
  EXPECT_EQ(model->folderPath(), std::nullopt) << "the folder that was shown belongs to another scan";
}

TEST_F(ScanLifecycleTest, scansWhenAccessIsGranted) {
  hasAccess = false;
  haveStarted();
  storeScan(morning);
  startModel();
  model->panelWillShow();
  EXPECT_FALSE(model->scans().isScanning());
  hasAccess = true;
  model->panelWillShow();
  EXPECT_TRUE(model->hasFullDiskAccess());
  EXPECT_TRUE(model->scans().isScanning());
  desktop.settle();
  model->panelWillShow();
  EXPECT_FALSE(model->scans().isScanning());
}

TEST_F(ScanLifecycleTest, measuresAgainWhatWasCleanedDuringTheScan) {
  addFile("junk/a", 40 * MB);
  startModel();
  model->scans().scan();
  desktop.settle();
  ASSERT_EQ(sizeInScan("junk"), 40 * MB);

  desktop.advance(1s);
  desktop.tasks.hold(Tasks::Priority::background);
  model->scans().scan();
  desktop.tasks.runHeldWork(Tasks::Priority::background);
  model->cleanups().ask(DeleteRequest{inHome("junk"), "junk", 40 * MB, ""});
  confirm();
  desktop.advance(5s);
  EXPECT_EQ(sizeInScan("junk"), 0) << "the clean-up shows at once";
  desktop.tasks.release(Tasks::Priority::background);
  desktop.settle();
  EXPECT_FALSE(model->scans().isScanning());
  EXPECT_EQ(sizeInScan("junk"), 0) << "the scan had passed there before";
  EXPECT_EQ(store.load(store.entries().front())->nodeAt(inHome("junk")), nullptr);
}

TEST_F(ScanLifecycleTest, saysWhatFailed) {
  startModel();
  fs::remove_all(home);
  model->scans().scan();
  desktop.settle();
  EXPECT_EQ(message(), "Couldn't scan ~.");
  EXPECT_FALSE(model->history().snapshot());
  EXPECT_FALSE(model->scans().isScanning());

  addFile("big", 30 * MB);
  std::ofstream{store.directory} << "in the way";
  model->scans().scan();
  desktop.settle();
  EXPECT_THAT(message(), testing::StartsWith("Couldn't save scan results: "));
  EXPECT_EQ(sizeInScan("big"), 30 * MB) << "it is shown all the same";

  model->cleanups().ask(DeleteRequest{inHome("big"), "big", 30 * MB, ""});
  confirm();
  desktop.advance(500ms);
  EXPECT_THAT(message(), testing::StartsWith("Couldn't save changes to the scan: "));
  EXPECT_EQ(sizeInScan("big"), 0);

  fs::remove(store.directory);
  desktop.advance(1min);
  model->scans().scan();
  desktop.settle();
  EXPECT_EQ(storedScans(), 1U) << "a history folder that vanished is made again";
}

TEST_F(ScanLifecycleTest, showsTheNewestScanThatCanBeRead) {
  storeScan(morning - 48h, 100 * MB);
  storeScan(morning - 24h, 200 * MB);
  for (const auto age : {2h, 1h}) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(morning - age).time_since_epoch().count();
    std::ofstream{store.directory + "/" + std::to_string(seconds) + ".json"} << "{";
  }
  startModel();
  EXPECT_EQ(model->history().snapshot()->root.size, 200 * MB);
  EXPECT_EQ(message(), "The latest scan couldn't be read, so an earlier one is shown.");
  EXPECT_THAT(model->history().entries(), SizeIs(4));

  fs::remove_all(store.directory);
  startModel();
  EXPECT_FALSE(model->history().snapshot());
  EXPECT_EQ(message(), "");
  EXPECT_TRUE(model->history().isLoaded());
}

TEST_F(ScanLifecycleTest, comparesWithTheScanOfADayAgo) {
  storeScan(morning - 26h, 20 * MB);
  addFile("new", 150 * MB);
  startModel();
  EXPECT_EQ(model->history().baselineEntry(), std::nullopt) << "one scan has nothing to compare with";
  model->scans().scan();
  desktop.settle();
  ASSERT_TRUE(model->history().baselineEntry());
  EXPECT_EQ(model->history().baselineEntry()->date, morning - 26h);
  EXPECT_EQ(model->findings().spaceChange.value().freeBefore, 120 * GB);
  ASSERT_THAT(model->findings().growth, SizeIs(1));
  EXPECT_EQ(model->findings().growth[0].path, inHome("new"));

  desktop.advance(30h);
  fs::resize_file(model->history().baselineEntry()->path, 10);
  model->scans().scan();
  desktop.settle();
  EXPECT_EQ(model->history().baselineEntry()->date, morning - 26h) << "the baseline stays what it was";
  EXPECT_TRUE(model->findings().baselineUnavailable);
  EXPECT_EQ(model->findings().spaceChange, std::nullopt);
  EXPECT_THAT(model->findings().growth, IsEmpty());

  model->history().setBaselineEntry(model->history().entries()[1]);
  desktop.settle();
  EXPECT_FALSE(model->findings().baselineUnavailable);
  fs::remove(model->history().baselineEntry()->path);
  desktop.advance(1s);
  model->scans().scan();
  desktop.settle();
  EXPECT_EQ(model->history().baselineEntry()->date, morning + 30h) << "what is gone is not compared with";
}

TEST_F(ScanLifecycleTest, asksTheJournalOnlyForASeedThatIsFit) {
  journal.id = 7;
  addFile("kept/inner", 50 * MB);
  startModel();
  model->scans().scan();
  desktop.settle();
  EXPECT_THAT(journal.queries, IsEmpty());
  EXPECT_EQ(model->history().snapshot()->eventID, 7U);

  // What the journal does not name is taken over from the last scan, whatever is there now.
  journal.answer = FolderChanges{};
  fs::remove(inHome("kept/inner"));
  desktop.advance(1h);
  makeModel().start();
  model->scans().scan();  // before the stored scan is read
  desktop.settle();
  ASSERT_THAT(journal.queries, SizeIs(1));
  EXPECT_EQ(journal.queries[0].since, 7U);
  EXPECT_EQ(sizeInScan("kept"), 50 * MB);
  EXPECT_EQ(model->history().snapshot()->fullScanDate, morning);

  desktop.advance(73h);
  model->scans().scan();
  desktop.settle();
  EXPECT_THAT(journal.queries, SizeIs(1)) << "after three days everything is walked";
  EXPECT_EQ(sizeInScan("kept"), 0);
}

}  // namespace
}  // namespace spacemint
