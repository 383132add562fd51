// One day and one night on a computer whose disk fills up, with everything that the user sees.

#include "support/ModelFixture.h"

#include <filesystem>

namespace spacemint {
namespace {

using namespace support;
using testing::ElementsAre;
namespace fs = std::filesystem;

class DayOfUse : public ModelFixture {
 protected:
  // The time since the first midnight, as "10:00"; "26:00" is two o'clock in the night.
  std::string time() const {
    const auto since = std::chrono::floor<std::chrono::minutes>(desktop.clock.now() - morning) + 8h;
    const auto digits = [](auto count) { return (count < 10 ? "0" : "") + std::to_string(count); };
    return digits(since / 1h) + ":" + digits(since % 1h / 1min);
  }
  void note(const std::string& what) { diary.push_back(time() + " " + what); }
  void goTo(std::chrono::minutes time) { desktop.advance(morning - 8h + time - desktop.clock.now()); }
  // The model reads the volume at the next full minute.
  void setFree(std::chrono::minutes time, Bytes free) {
    goTo(time - 1min);
    desktop.advance(30s);
    desktop.volume.current->free = free;
  }

  void keepDiary() {
    desktop.notifier.onPost = [this](const Notification& posted) {
      EXPECT_TRUE(posted.hasSound);
      note((posted.isCritical ? "critical: " : "notification: ") + posted.title + " | " + posted.body);
    };
    QObject::connect(&model->messages(), &Messages::changed, [this] {
      if (model->messages().message()) note("message: " + *model->messages().message());
    });
    QObject::connect(&model->scans(), &ScanLifecycle::progressChanged, [this] {
      const bool isScanning = model->scans().isScanning();
      if (isScanning && !wasScanning) note("scan");
      wasScanning = isScanning;
    });
  }

  std::vector<std::string> diary;
  bool wasScanning = false;
};

TEST_F(DayOfUse, hasExactlyTheseScansWarningsAndMessages) {
  addFile("Projects/film", 60 * MB);
  addFile(".cache/thumbnails/a", 80 * MB);
  addFile(".local/share/Trash/files/old", 50 * MB);
  addFile("junk", 40 * MB);
  Preferences{defaults}.setHasStarted(true);
  desktop.volume.others = {
      {.volume = {.pool = 1, .fileSystem = "ext4", .places = {{.mountPoint = disk}}, .isWritable = true},
       .space = Space{.total = 60 * GB, .used = 20 * GB, .free = 40 * GB}}};
  makeModel();
  keepDiary();
  model->start();

  setFree(10h, 15 * GB);
  setFree(11h, 9 * GB);
  goTo(12h);
  ASSERT_EQ(model->findings().devCleanups.size(), 1U);
  model->cleanups().ask(model->findings().devCleanups.front());
  confirm();
  goTo(13h);
  model->cleanups().ask(DeleteRequest{inHome("junk"), "junk", 40 * MB, ""});
  confirm();
  setFree(15h, 100 * GB);
  goTo(16h);
  model->confirmEmptyTrash();
  confirm();
  goTo(17h);
  addFile("Projects/more", 400 * MB);
  setFree(22h, 15 * GB);
  goTo(32h);

  EXPECT_THAT(
      diary,
      ElementsAre(
          "08:03 scan",
          "10:00 notification: Disk space is running low | Only 15 GB left on Disk. Click to see what's "
          "using "
          "space.",
          "10:00 scan",
          "11:00 critical: Your disk is almost full | Only 9 GB left on Disk. Click to see what's using "
          "space.",
          // The disk of this test never has more space.
          "12:00 message: Cleaned Thumbnails and freed 0 bytes. What was removed took up 81.9 MB; open "
          "programs, snapshots, hard links or copies may still hold the rest.",
          "13:00 message: Deleted junk.",  //
          "14:00 scan",
          "16:00 message: Emptied the Trash and freed 0 bytes. What was removed took up 51.2 MB; open "
          "programs, snapshots, hard links or copies may still hold the rest.",
          "20:00 scan",
          "22:00 notification: Disk space is running low | Only 15 GB left on Disk. ~/Projects/more grew by "
          "410 MB recently. Click to see what's using space.",
          "22:00 scan", "26:00 scan", "32:00 scan"));

  const auto free = model->freeSpace().readings(desktop.clock.now());
  ASSERT_EQ(free.size(), 25U);
  EXPECT_EQ(free.front(), (FreeSpaceReading{.date = morning, .free = 100 * GB, .total = 500 * GB}));
  EXPECT_EQ(free.back(), (FreeSpaceReading{.date = morning + 24h, .free = 15 * GB, .total = 500 * GB}));

  const auto ofOther = FreeSpaceRecord::ofVolume(folder / "state", disk).readings(desktop.clock.now());
  ASSERT_EQ(ofOther.size(), 25U);
  EXPECT_EQ(ofOther.back().free, 40 * GB) << "each volume has a record of its own";

  std::vector<Date> stored;
  for (const auto& entry : store.entries()) stored.push_back(entry.date);
  EXPECT_THAT(stored, ElementsAre(morning + 24h, morning + 18h, morning + 14h))
      << "the two newest, and the newest of the day before";
  const auto newest = store.load(store.entries().front());
  ASSERT_TRUE(newest);
  EXPECT_EQ(newest->volumeFree, 15 * GB);
  EXPECT_EQ(*newest, *model->history().snapshot());
  EXPECT_EQ(sizeInScan("Projects"), 460 * MB);
  EXPECT_FALSE(exists("junk"));
  EXPECT_FALSE(exists(".cache/thumbnails/a"));
  EXPECT_FALSE(exists(".local/share/Trash/files/old"));
  EXPECT_TRUE(exists("Projects/film"));
}

}  // namespace
}  // namespace spacemint
