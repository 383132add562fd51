// The model on real threads, the real clock and a real home folder, from the first scan to a cleaned cache.

#include "Spacemint/desktop/linux/LinuxClock.h"
#include "Spacemint/desktop/linux/ThreadTasks.h"
#include "core/scan/ProcessJournal.h"
#include "support/ModelFixture.h"
#include "support/Waiting.h"

#include <QAbstractEventDispatcher>
#include <QTimer>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace spacemint {
namespace {

using namespace support;
using testing::SizeIs;
namespace fs = std::filesystem;

// Measures how long the event loop of this thread is kept from turning: from each time it wakes up to when
// it waits again. Time in which the thread was ready but got no processor is another's and does not count,
// where the system tells it.
class LoopWatch : public QObject {
 public:
  LoopWatch() {
    auto* dispatcher = QAbstractEventDispatcher::instance();
    connect(dispatcher, &QAbstractEventDispatcher::awake, this, [this] { woke_ = now(); });
    connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, [this] {
      if (woke_.at.count() != 0) longest_ = std::max(longest_, since(woke_));
    });
  }

  std::chrono::nanoseconds longest() const { return longest_; }

 private:
  struct Moment {
    std::chrono::nanoseconds at{0};
    // What the thread has waited for a processor.
    std::chrono::nanoseconds queued{0};
  };

  static Moment now() {
    std::int64_t ran = 0;
    std::int64_t queued = 0;
    std::ifstream{"/proc/thread-self/schedstat"} >> ran >> queued;
    return {std::chrono::steady_clock::now().time_since_epoch(), std::chrono::nanoseconds{queued}};
  }

  static std::chrono::nanoseconds since(const Moment& begin) {
    const Moment end = now();
    return (end.at - begin.at) - (end.queued - begin.queued);
  }

  Moment woke_;
  std::chrono::nanoseconds longest_{0};
};

class WholeModel : public ModelFixture {
 protected:
  WholeModel() {
    look.start(20);
    for (const char* name : {"meet", "state"}) fs::create_directories(folder / name);
    fs::permissions(folder / "meet", fs::perms::owner_all);
    disk = home;
    makeModel(recording, {clock, tasks, desktop.notifier, desktop.trash, desktop.opener, desktop.scheduler,
                          desktop.volume, desktop.statusItem, desktop.badge, desktop.appearance,
                          desktop.loginItem, desktop.outsideClicks});
  }
  ~WholeModel() override {
    model.reset();
    tasks.finish(1min);
  }

  // A thousand in each folder below "many".
  void addManyFiles(int count) {
    for (int folder = 0; folder < count / 1'000; ++folder) {
      const std::string name = inHome("many/" + std::to_string(folder));
      fs::create_directories(name);
      const int handle = open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
      for (int i = 0; i < 1'000; ++i) {
        close(openat(handle, std::to_string(i).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644));
      }
      close(handle);
    }
  }
  bool waitForScan() {
    return waitUntil([this] { return !model->scans().isScanning(); });
  }
  bool waitForMessage(const std::string& text) {
    return waitUntil([&] { return message().starts_with(text); });
  }
  bool waitForStoredScan() {
    return waitUntil([this] {
      const auto stored = store.load(store.entries().front());
      return stored && *stored == *model->history().snapshot();
    });
  }
  // Scans are told apart by the second in which they ended.
  void waitForNextSecond() {
    const auto second = std::chrono::floor<std::chrono::seconds>(clock.now());
    waitUntil([&] { return std::chrono::floor<std::chrono::seconds>(clock.now()) > second; }, 2s);
  }

  ProcessJournal recording{{.root = {}, .endpointFolder = folder / "meet", .stateFolder = folder / "state"}};
  LinuxClock clock;
  ThreadTasks tasks;
  QTimer look;  // wakes the event loop, so that `waitUntil` looks at the disk again
};

TEST_F(WholeModel, scansRecordsComparesAndCleans) {
  addFile("Projects/film", 60 * MB);
  addFile(".cache/thumbnails/a", 80 * MB);
  model->start();
  ASSERT_TRUE(waitUntil([this] { return model->history().isLoaded(); }));
  model->begin();
  ASSERT_TRUE(waitForScan());
  ASSERT_TRUE(model->history().snapshot());
  EXPECT_TRUE(model->history().snapshot()->eventID) << "recorded from the first scan on";
  EXPECT_EQ(sizeInScan("Projects"), 60 * MB);

  waitForNextSecond();
  addFile("Projects/more", 150 * MB);
  model->scans().scan();
  ASSERT_TRUE(waitForScan());
  const SharedSnapshot& rescan = model->history().snapshot();
  EXPECT_EQ(sizeInScan("Projects"), 210 * MB);
  EXPECT_LT(*rescan->fullScanDate, rescan->date - rescan->duration) << "what did not change was reused";
  ASSERT_TRUE(waitUntil([this] { return !model->findings().growth.empty(); }));
  EXPECT_EQ(model->findings().growth.front().path, inHome("Projects/more"));

  ASSERT_THAT(model->findings().devCleanups, SizeIs(1));
  model->cleanups().ask(model->findings().devCleanups.front());
  confirm();
  ASSERT_TRUE(waitForMessage("Cleaned Thumbnails")) << message();
  EXPECT_FALSE(exists(".cache/thumbnails/a"));
  EXPECT_EQ(sizeInScan(".cache/thumbnails"), 0);
  EXPECT_TRUE(waitForStoredScan());
  EXPECT_THAT(store.entries(), SizeIs(2));
}

TEST_F(WholeModel, neverHoldsUpTheInterface) {
  constexpr int files = 100'000;
  addManyFiles(files);
  addFile("many/large", 30 * MB);
  model->start();
  ASSERT_TRUE(waitUntil([this] { return model->history().isLoaded(); }));
  const LoopWatch watch;
  model->scans().scan();
  ASSERT_TRUE(waitForScan());
  EXPECT_EQ(model->history().snapshot()->fileCount, files + 1);
  model->cleanups().ask(DeleteRequest{inHome("many"), "many", 30 * MB, ""});
  confirm();
  ASSERT_TRUE(waitForMessage("Deleted many")) << message();
  EXPECT_FALSE(exists("many"));
  const auto longest = std::chrono::duration_cast<std::chrono::microseconds>(watch.longest());
  RecordProperty("longestGapMicroseconds", static_cast<int>(longest.count()));
  std::printf("longest gap of the event loop: %.2f ms\n", static_cast<double>(longest.count()) / 1'000);
  EXPECT_LT(longest, 5ms * SPACEMINT_SLOWNESS);
}

TEST_F(WholeModel, endsInTheMiddleOfACleanUpAndTouchesNothingElse) {
  addManyFiles(50'000);
  addFile("kept", 30 * MB);
  model->start();
  model->scans().scan();
  ASSERT_TRUE(waitForScan());
  model->cleanups().ask(DeleteRequest{inHome("many"), "many", 0, ""});
  confirm();
  ASSERT_TRUE(waitUntil([this] { return !exists("many/0") || !exists("many/9") || !exists("many/49"); }));
  model.reset();
  tasks.finish(1'500ms);
  EXPECT_TRUE(exists("kept"));
  EXPECT_TRUE(store.load(store.entries().front()));
}

}  // namespace
}  // namespace spacemint
