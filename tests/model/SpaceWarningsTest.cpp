#include "support/ModelFixture.h"

namespace spacemint {
namespace {

using namespace support;
using testing::IsEmpty;
using testing::SizeIs;

TEST(WarningState, followsTheTable) {
  using enum SpaceLevel;
  const auto warned = [](SpaceLevel level) { return std::optional{Warning{morning, level}}; };
  struct Case {
    std::optional<Warning> last;
    Bytes free;
    std::chrono::minutes later;
    std::optional<SpaceLevel> held;
    bool warns;
  };
  const Case cases[]{{{}, 20 * GB, 0min, {}, false},
                     {{}, 20 * GB - 1, 0min, low, true},
                     {{}, 10 * GB, 0min, low, true},
                     {{}, 10 * GB - 1, 0min, critical, true},
                     {warned(low), 22 * GB, 5min, low, false},
                     {warned(low), 22 * GB + 1, 5min, {}, false},
                     {warned(low), 9 * GB, 5min, critical, true},
                     {warned(low), 15 * GB, 719min, low, false},
                     {warned(low), 15 * GB, 720min, low, true},
                     {warned(critical), 15 * GB, 719min, critical, false},
                     {warned(critical), 15 * GB, 720min, low, true},
                     // The clock was set back: when the last warning was given is not known.
                     {warned(low), 15 * GB, -1min, low, true},
                     {warned(low), 22 * GB, -1min, low, false}};
  for (const Case& c : cases) {
    const auto next =
        WarningState::after(c.last, {.free = c.free, .limits = homeLimits(20), .now = morning + c.later});
    EXPECT_EQ(next.warns, c.warns) << c.free;
    EXPECT_EQ(next.last.has_value(), c.held.has_value()) << c.free;
    if (next.last && c.held) {
      EXPECT_EQ(next.last->level, *c.held) << c.free;
      EXPECT_EQ(next.last->date, c.warns ? morning + c.later : morning) << c.free;
    }
  }
}

TEST(WarningState, countsWithAnyThresholdOfASettingsFile) {
  constexpr auto largest = std::numeric_limits<std::int64_t>::max();
  EXPECT_FALSE(WarningState::after({}, {.free = 0, .limits = homeLimits(0), .now = morning}).warns);
  EXPECT_FALSE(WarningState::after({}, {.free = 0, .limits = homeLimits(-largest), .now = morning}).warns);
  EXPECT_TRUE(WarningState::after({}, {.free = GB, .limits = homeLimits(largest), .now = morning}).warns);
  // Times a gigabyte this number is a little more than 2^64.
  EXPECT_EQ(spaceLevel(GB, 18'446'744'074), SpaceLevel::critical) << "what the terminal says";
  EXPECT_EQ(
      WarningState::after({}, {.free = GB, .limits = homeLimits(18'446'744'074), .now = morning}).last->level,
      SpaceLevel::critical)
      << "what the application says";
}

// A volume of its own with 100 GB, of which `free` are free.
VolumeReading volumeOf(std::uint64_t pool, const std::string& name, Bytes free) {
  return {.volume = {.pool = pool,
                     .name = name,
                     .fileSystem = "ext4",
                     .places = {{.mountPoint = "/" + name}},
                     .isWritable = true},
          .space = Space{.total = 100 * GB, .used = 100 * GB - free, .free = free}};
}

TEST(Supplies, areOfVolumesThatCanFillUp) {
  std::vector<VolumeReading> volumes;
  const auto add = [&](const std::string& name, auto change) {
    volumes.push_back(volumeOf(volumes.size() + 1, name, 50 * GB));
    change(volumes.back());
  };
  add("home", [](VolumeReading& v) {
    v.volume.holdsHome = true;
    v.space->files = {.total = 1'000, .free = 30};
  });
  add("data", [](VolumeReading& v) { v.space->files = {.total = 1'000, .free = 9}; });
  add("stick", [](VolumeReading& v) { v.volume.isRemovable = true; });
  add("dvd", [](VolumeReading& v) { v.volume.isWritable = false; });
  add("boot", [](VolumeReading& v) { v.space->total = GB - 1; });
  add("silent", [](VolumeReading& v) { v.space.reset(); });
  add("windows", [](VolumeReading& v) {
    v.volume.fileSystem = "fuseblk";
    v.space->files = {.total = 1'000, .free = 0};
  });
  std::string found;
  for (const VolumeReading& volume : volumes) {
    for (const Supply& supply : suppliesOf(volume, 20)) {
      found += supply.name + (supply.resource == Resource::files ? " files " : " space ") +
               std::to_string(std::to_underlying(supply.level())) + "\n";
    }
  }
  EXPECT_EQ(found, "home files 1\ndata space 0\ndata files 2\nwindows space 0\n");
}

TEST(Supplies, ofSmallVolumesAreLowAtATenth) {
  for (const auto& [usable, low] : {std::pair{4 * GB, 400 * MB * 1'000 / 1'024},
                                    {128 * GB, 12'800'000'000},
                                    {200 * GB, 20 * GB},
                                    {4'000 * GB, 20 * GB},
                                    {Bytes{0}, Bytes{0}},
                                    {-GB, Bytes{0}}}) {
    const SpaceLimits limits = volumeLimits(usable, 20);
    EXPECT_EQ(limits.lowBelow, low) << usable;
    EXPECT_EQ(limits.criticalBelow, low / 2) << usable;
    EXPECT_EQ(limits.rearmsAbove, low + std::min(2 * GB, low / 10)) << usable;
  }
}

class SpaceWarningsTest : public ModelFixture {
 protected:
  // The title of the only notification since the last call; "none" without one.
  std::string notified() {
    auto posted = std::exchange(desktop.notifier.posted, {});
    return posted.empty()      ? "none"
           : posted.size() > 1 ? "several"
                               : posted.front().title + ": " + posted.front().body;
  }
};

TEST_F(SpaceWarningsTest, keepsAStateForEachVolumeAndSaysItInOneMessage) {
  auto& volumes = desktop.volume.others;
  volumes = {volumeOf(1, "backup", 50 * GB), volumeOf(2, "data", 50 * GB)};
  startModel();
  EXPECT_EQ(notified(), "none");
  volumes[0].space->free = 9 * GB;
  volumes[0].space->used = 91 * GB;
  desktop.advance(60s);
  EXPECT_EQ(
      notified(),
      "Disk space is running low on backup: Only 9 GB left on backup. Click to see what's using space.");
  volumes[1].space->files = {.total = 1'000, .free = 1};
  desktop.volume.current->free = 9 * GB;
  desktop.advance(60s);
  EXPECT_EQ(notified(),
            "Your disks are almost full: Only 9 GB left on Disk. Only 1 more file can be stored on data, "
            "even if it has free space. Click to see what's using space.");
  desktop.advance(11h);
  EXPECT_EQ(notified(), "none");
  model->prefs().setUnwatchedVolumes({"/data"});
  desktop.volume.current->free = 100 * GB;
  volumes.erase(volumes.begin());
  desktop.advance(2h);
  EXPECT_EQ(notified(), "none");
  volumes.push_back(volumeOf(1, "backup", 4 * GB));
  desktop.advance(60s);
  EXPECT_EQ(notified(), "backup is almost full: Only 4 GB left on backup. Click to see what's using space.");
  volumes.back().space.reset();
  desktop.advance(60s);
  volumes.back() = volumeOf(1, "backup", 4 * GB);
  desktop.advance(60s);
  EXPECT_EQ(notified(), "none") << "the volume was only slow to answer";
}

TEST_F(SpaceWarningsTest, warnsAsSoonAsAServiceAcceptsTheWarning) {
  Preferences{defaults}.setHasStarted(true);
  storeScan(morning - 2h);
  desktop.notifier.hasService = false;
  desktop.volume.current->free = 15 * GB;
  startModel();
  desktop.advance(5min);
  EXPECT_EQ(desktop.notifier.refused, 1) << "not at every reading";
  EXPECT_THAT(store.entries(), SizeIs(2)) << "the scan was two hours old";
  desktop.advance(3h);
  EXPECT_GT(desktop.notifier.refused, 10);
  EXPECT_THAT(store.entries(), SizeIs(2)) << "one scan for one warning";
  desktop.notifier.hasService = true;
  Q_EMIT desktop.notifier.serviceAppeared();
  EXPECT_THAT(desktop.notifier.posted, SizeIs(1)) << "at once";
  Q_EMIT desktop.notifier.serviceAppeared();
  desktop.advance(1h);
  EXPECT_THAT(desktop.notifier.posted, SizeIs(1)) << "once";
}

TEST_F(SpaceWarningsTest, namesWhatFillsTheDiskAndAClickOpensItsFolder) {
  Preferences{defaults}.setHasStarted(true);
  storeHome(morning - 1min, {support::folder("vm", {file("disk.img", GB)}), file("letters", GB)});
  startModel();
  growFile("vm", "disk.img", 5, 4 * MB);
  desktop.volume.current->free = 15 * GB;
  growFile("vm", "disk.img", 5, 8 * MB);
  desktop.volume.current->free = 15 * GB;
  desktop.advance(1min);
  ASSERT_THAT(desktop.notifier.posted, SizeIs(1));
  EXPECT_EQ(desktop.notifier.posted[0].body, "Only 15 GB left on Disk. Click to see what's using space.")
      << "it is not the file that took 85 GB";

  desktop.volume.current->free = 100 * GB;
  desktop.advance(30min);
  growFile("vm", "disk.img", 10, 4 * MB);
  model->prefs().setWarningThresholdGB(1'000);
  desktop.advance(1min);
  ASSERT_THAT(desktop.notifier.posted, SizeIs(2));
  EXPECT_THAT(desktop.notifier.posted[1].body,
              AllOf(testing::HasSubstr("~/vm/disk.img"), testing::HasSubstr(" grew by "),
                    testing::EndsWith(" in the last 10 minutes. Click to see what's using space.")));
  model->followWarning();
  EXPECT_EQ(model->tab(), Tab::folders);
  EXPECT_EQ(model->folderPath(), inHome("vm"));

  desktop.volume.others = {volumeOf(1, "backup", GB)};
  growFile("vm", "disk.img", 10, 8 * MB);
  desktop.advance(1min);
  ASSERT_THAT(desktop.notifier.posted, SizeIs(3));
  EXPECT_EQ(desktop.notifier.posted[2].body, "Only 1 GB left on backup. Click to see what's using space.");
  model->followWarning();
  EXPECT_EQ(model->tab(), Tab::overview) << "the file fills another volume";
}

TEST_F(SpaceWarningsTest, aWarningThatIsNoLongerDueIsNotGiven) {
  desktop.notifier.hasService = false;
  desktop.volume.current->free = 15 * GB;
  startModel();
  desktop.volume.current->free = 100 * GB;
  desktop.advance(60s);
  desktop.notifier.hasService = true;
  Q_EMIT desktop.notifier.serviceAppeared();
  desktop.advance(1h);
  EXPECT_THAT(desktop.notifier.posted, IsEmpty());
}

TEST_F(SpaceWarningsTest, aFailedReadingChangesNothing) {
  startModel();
  int readings = 0;
  QObject::connect(model.get(), &AppModel::statusChanged, [&] { ++readings; });
  desktop.advance(60s);
  EXPECT_EQ(readings, 1) << "also when it is as before";
  desktop.volume.current.reset();
  desktop.advance(10min);
  EXPECT_EQ(readings, 1);
  EXPECT_EQ(model->volume().status()->free, 100 * GB);
}

TEST_F(SpaceWarningsTest, neverReadsAVolumeThatMayHangOnTheMainThread) {
  desktop.volume.hangs = true;
  desktop.tasks.hold(Tasks::Priority::utility);
  startModel();
  EXPECT_EQ(desktop.volume.readings, 0);
  desktop.tasks.release(Tasks::Priority::utility);
  desktop.settle();
  EXPECT_EQ(model->volume().status()->free, 100 * GB);
}

TEST_F(SpaceWarningsTest, tellsWhetherNotificationsArrive) {
  startModel();
  int changes = 0;
  QObject::connect(&model->warnings(), &SpaceWarnings::notificationsAllowedChanged, [&] { ++changes; });
  desktop.notifier.allowed = false;
  model->panelWillShow();
  desktop.settle();
  EXPECT_FALSE(model->warnings().notificationsAllowed());
  model->panelWillShow();
  desktop.settle();
  EXPECT_EQ(changes, 1);
  model->warnings().sendTestNotification();
  EXPECT_THAT(desktop.notifier.posted, testing::ElementsAre(Notification{
                                           .title = "Spacemint notifications work",
                                           .body = "You'll be warned when free space drops below 20 GB."}));
}

TEST_F(SpaceWarningsTest, staysSilentWhenItIsNotTheApplication) {
  isApplication = false;
  startModel();
  model->begin();
  model->warnings().sendTestNotification();
  desktop.volume.current->free = 0;
  desktop.advance(2min);
  EXPECT_THAT(desktop.notifier.posted, IsEmpty());
  EXPECT_EQ(desktop.notifier.requests, 0);
}

}  // namespace
}  // namespace spacemint
