#include "Spacemint/desktop/linux/CoarseScheduler.h"
#include "Spacemint/desktop/linux/LinuxClock.h"
#include "Spacemint/desktop/linux/Termination.h"
#include "Spacemint/desktop/linux/ThreadTasks.h"
#include "core/host/ThreadPriority.h"
#include "support/ChildProcess.h"
#include "support/TemporaryFolder.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <future>
#include <latch>
#include <memory>
#include <thread>

namespace spacemint {
namespace {

using std::chrono::milliseconds;
using support::waitUntil;
using Priority = Tasks::Priority;

constexpr std::chrono::seconds longEnough{20};

std::string threadName() {
  std::array<char, 16> name{};
  pthread_getname_np(pthread_self(), name.data(), name.size());
  return name.data();
}

int threadsOfThisProcess() {
  const std::filesystem::directory_iterator threads("/proc/self/task");
  return static_cast<int>(std::distance(begin(threads), end(threads)));
}

// Notes on which thread it is destroyed.
struct Witness {
  explicit Witness(std::atomic<std::thread::id>& id) : destroyedOn(&id) {}
  Witness(Witness&& other) noexcept : destroyedOn(std::exchange(other.destroyedOn, nullptr)) {}
  ~Witness() {
    if (destroyedOn != nullptr) *destroyedOn = std::this_thread::get_id();
  }
  std::atomic<std::thread::id>* destroyedOn;
};

TEST(ThreadTasks, worksElsewhereAndIsDoneHere) {
  ThreadTasks tasks;
  for (const Priority priority :
       {Priority::background, Priority::utility, Priority::userInitiated, Priority::alone}) {
    std::thread::id worker;
    std::atomic<std::thread::id> destroyedOn;
    bool isDone = false;
    tasks.start({.priority = priority,
                 .work = [&, witness = Witness(destroyedOn)] { worker = std::this_thread::get_id(); },
                 .done =
                     [&] {
                       EXPECT_EQ(destroyedOn.load(), worker);
                       isDone = true;
                     }});
    ASSERT_TRUE(waitUntil([&] { return isDone; }));
    EXPECT_NE(worker, std::this_thread::get_id());
  }
}

TEST(ThreadTasks, longWorkHoldsNoThreadThatOthersWaitFor) {
  ThreadTasks tasks{WorkerThreads::Limits{.shared = 1}};
  std::promise<void> end;
  const std::shared_future<void> ended = end.get_future().share();
  int done = 0;
  for (int i = 0; i < 5; ++i) {
    tasks.start({.priority = Priority::alone, .work = [ended] { ended.wait(); }, .done = [&] { ++done; }});
  }
  bool isDone = false;
  tasks.start({.priority = Priority::userInitiated, .work = [] {}, .done = [&] { isDone = true; }});
  EXPECT_TRUE(waitUntil([&] { return isDone; }));
  EXPECT_EQ(done, 0);
  end.set_value();
  EXPECT_TRUE(waitUntil([&] { return done == 5; }));
}

TEST(ThreadTasks, givesBackgroundWorkANamedThreadOfLowPriority) {
  ThreadTasks tasks;
  const int ordinary = getpriority(PRIO_PROCESS, 0);
  std::string name;
  int policy = -1;
  int niceness = 0;
  bool isDone = false;
  tasks.start({.priority = Priority::background,
               .work =
                   [&] {
                     name = threadName();
                     policy = sched_getscheduler(0);
                     niceness = getpriority(PRIO_PROCESS, 0);
                   },
               .done = [&] { isDone = true; },
               .threadName = "Spacemint scan, too long"});
  ASSERT_TRUE(waitUntil([&] { return isDone; }));
  EXPECT_EQ(name, "Spacemint scan,");
  EXPECT_EQ(policy, SCHED_OTHER);  // in another class it could stand still for minutes
  EXPECT_EQ(niceness, std::max(ordinary, backgroundNiceness));
  EXPECT_EQ(getpriority(PRIO_PROCESS, 0), ordinary);
}

TEST(ThreadTasks, runsPostedFunctionsInOrderEvenFromInsideOne) {
  ThreadTasks tasks;
  std::vector<int> order;
  std::thread poster([&] {
    tasks.post([&] {
      order.push_back(1);
      // A loop inside a function still gets what was posted after it.
      EXPECT_TRUE(waitUntil([&] { return order.size() == 3; }));
      order.push_back(4);
    });
    tasks.post([&] { order.push_back(2); });
    tasks.post([&] { order.push_back(3); });
  });
  poster.join();
  EXPECT_TRUE(waitUntil([&] { return order.size() == 4; }));
  EXPECT_THAT(order, testing::ElementsAre(1, 2, 3, 4));
}

TEST(ThreadTasks, givesTheResultToAContextThatStillExists) {
  ThreadTasks tasks({.shared = 1});
  const auto work = [] { return std::string{"result"}; };
  QObject context;
  auto gone = std::make_unique<QObject>();
  std::string text;
  bool isCalled = false;
  tasks.run(Priority::utility, gone.get(), work, [&](const std::string&) { isCalled = true; });
  tasks.run(Priority::utility, &context, work, [&](const std::string& result) { text = result; });
  gone.reset();
  EXPECT_TRUE(waitUntil([&] { return text == "result"; }));
  EXPECT_FALSE(isCalled);
}

TEST(ThreadTasks, sharesFewThreadsAndKeepsNoneWhenIdle) {
  std::thread{[] {}}.join();  // with the first thread a sanitizer starts one of its own
  const int before = threadsOfThisProcess();
  ThreadTasks tasks({.shared = 2, .idle = milliseconds{1}});
  constexpr int count = 200;
  std::atomic<int> atOnce = 0;
  std::atomic<int> most = 0;
  int done = 0;
  for (int i = 0; i < count; ++i) {
    tasks.start({.work =
                     [&] {
                       most = std::max(most.load(), ++atOnce);
                       std::this_thread::yield();
                       --atOnce;
                     },
                 .done = [&] { ++done; }});
  }
  EXPECT_TRUE(waitUntil([&] { return done == count; }));
  EXPECT_LE(most, 2);
  QTimer look;  // nothing tells when a thread has gone
  look.start(1);
  EXPECT_TRUE(waitUntil([&] { return threadsOfThisProcess() <= before; }));
}

TEST(ThreadTasks, servesWhoeverWaitsFirst) {
  ThreadTasks tasks({.shared = 1});
  std::latch mayGoOn(1);
  std::vector<int> order;
  tasks.start({.work = [&] { mayGoOn.wait(); }});
  tasks.start({.priority = Priority::utility, .work = [] {}, .done = [&] { order.push_back(2); }});
  tasks.start({.priority = Priority::userInitiated, .work = [] {}, .done = [&] { order.push_back(1); }});
  mayGoOn.count_down();
  EXPECT_TRUE(waitUntil([&] { return order.size() == 2; }));
  EXPECT_THAT(order, testing::ElementsAre(1, 2));
}

TEST(ThreadTasks, finishWaitsForWhatRunsAndTakesNothingNew) {
  ThreadTasks tasks({.shared = 1});
  std::latch begun(1);
  std::latch mayEnd(1);
  std::atomic<bool> hasRun = false;
  tasks.start({.work = [&] {
    begun.count_down();
    mayEnd.wait();
  }});
  begun.wait();
  tasks.start({.work = [&] { hasRun = true; }});
  EXPECT_FALSE(tasks.finish(milliseconds{1}));
  mayEnd.count_down();
  EXPECT_TRUE(tasks.finish(longEnough));
  tasks.start({.work = [&] { hasRun = true; }});
  tasks.start({.priority = Priority::background, .work = [&] { hasRun = true; }});
  EXPECT_TRUE(tasks.finish(longEnough));
  EXPECT_FALSE(hasRun);
}

TEST(ThreadTasks, leavesRunningWorkToItselfWhenItIsDestroyed) {
  auto begun = std::make_shared<std::latch>(1);
  auto mayEnd = std::make_shared<std::latch>(1);
  auto ended = std::make_shared<std::latch>(1);
  std::atomic<std::thread::id> doneDestroyedOn;
  {
    ThreadTasks tasks;
    tasks.start(
        {.priority = Priority::background,
         .work =
             [=] {
               begun->count_down();
               mayEnd->wait();
               ended->count_down();
             },
         .done = [witness = Witness(doneDestroyedOn)] { ADD_FAILURE() << "nobody is there any more"; }});
    begun->wait();
  }
  EXPECT_EQ(doneDestroyedOn.load(), std::this_thread::get_id());
  mayEnd->count_down();
  ended->wait();
}

namespace fs = std::filesystem;
using support::TemporaryFolder;

constexpr Seconds soon{0.001};

struct Battery {
  const char* status = "Discharging";
  const char* capacity = "19";
  const char* scope = nullptr;
};

// The kernel's folder of power supplies.
class Supplies {
 public:
  const std::string& path() const { return folder_.path(); }

  void set(const std::string& name, const Battery& battery) {
    fs::create_directories(folder_ / name);
    write(name, "type", "Battery");
    write(name, "status", battery.status);
    write(name, "capacity", battery.capacity);
    if (battery.scope != nullptr) write(name, "scope", battery.scope);
  }

 private:
  void write(const std::string& name, const char* fact, const char* value) {
    std::ofstream(folder_ / name + "/" + fact) << value << '\n';
  }

  TemporaryFolder folder_;
};

TEST(BatteryLevel, isLowWhenEveryBatteryIsAndOneIsInUse) {
  Supplies supplies;
  EXPECT_FALSE(isBatteryLow(supplies.path()));
  EXPECT_FALSE(isBatteryLow(supplies.path() + "/none"));
  supplies.set("BAT0", {});
  EXPECT_TRUE(isBatteryLow(supplies.path()));
  supplies.set("BAT0", {.status = "Charging"});
  EXPECT_FALSE(isBatteryLow(supplies.path()));
  supplies.set("BAT0", {.capacity = "20"});
  EXPECT_FALSE(isBatteryLow(supplies.path()));
  supplies.set("BAT0", {});
  supplies.set("BAT1", {.status = "Not charging", .capacity = "90"});
  EXPECT_FALSE(isBatteryLow(supplies.path()));
  supplies.set("BAT1", {.status = "Not charging", .capacity = "1"});
  EXPECT_TRUE(isBatteryLow(supplies.path()));
}

TEST(BatteryLevel, isNotThatOfAMouse) {
  Supplies supplies;
  supplies.set("hid", {.capacity = "1", .scope = "Device"});
  EXPECT_FALSE(isBatteryLow(supplies.path()));
}

TEST(CoarseScheduler, runsAgainOnlyWhenTheLastRunIsFinished) {
  const Supplies none;
  CoarseScheduler scheduler({.folder = none.path()});
  std::vector<ActivityScheduler::Completion> runs;
  const auto scheduled = scheduler.schedule({.interval = soon}, [&](ActivityScheduler::Completion finished) {
    runs.push_back(std::move(finished));
  });
  ASSERT_TRUE(waitUntil([&] { return runs.size() == 1; }));
  EXPECT_FALSE(waitUntil([&] { return runs.size() > 1; }, std::chrono::milliseconds{20}));
  const auto first = runs[0];
  first();
  ASSERT_TRUE(waitUntil([&] { return runs.size() == 2; }));
  first();  // says nothing new
  EXPECT_FALSE(waitUntil([&] { return runs.size() > 2; }, std::chrono::milliseconds{20}));
}

TEST(CoarseScheduler, mayEndInsideARunAndBeforeItIsFinished) {
  const Supplies none;
  CoarseScheduler scheduler({.folder = none.path()});
  std::unique_ptr<ActivityScheduler::Scheduled> scheduled;
  ActivityScheduler::Completion last;
  scheduled = scheduler.schedule({.interval = soon}, [&](ActivityScheduler::Completion finished) {
    scheduled.reset();
    last = std::move(finished);
  });
  ASSERT_TRUE(waitUntil([&] { return last != nullptr; }));
  last();
}

TEST(CoarseScheduler, neverRunsWithoutAnInterval) {
  CoarseScheduler scheduler;
  bool hasRun = false;
  const auto zero = scheduler.schedule({}, [&](const auto&) { hasRun = true; });
  const auto less = scheduler.schedule({.interval = Seconds{-1}}, [&](const auto&) { hasRun = true; });
  EXPECT_NE(zero, nullptr);
  EXPECT_FALSE(waitUntil([&] { return hasRun; }, std::chrono::milliseconds{5}));
}

TEST(CoarseScheduler, waitsWhileTheBatteryIsLow) {
  Supplies supplies;
  supplies.set("BAT0", {});
  CoarseScheduler scheduler({.folder = supplies.path(), .lookAgain = soon});
  bool hasRun = false;
  const auto scheduled = scheduler.schedule({.interval = soon}, [&](const auto&) { hasRun = true; });
  EXPECT_FALSE(waitUntil([&] { return hasRun; }, std::chrono::milliseconds{20}));
  supplies.set("BAT0", {.status = "Charging"});
  EXPECT_TRUE(waitUntil([&] { return hasRun; }));
}

using std::chrono::seconds;

TEST(TimerPlan, takesTheCoarsestTimerThatIsNeverEarlyNorTooLate) {
  EXPECT_EQ(TimerPlan::of({seconds{60}, seconds{10}}), (TimerPlan{seconds{61}, Qt::VeryCoarseTimer}));
  EXPECT_EQ(TimerPlan::of({seconds{19}, milliseconds{1'999}}),
            (TimerPlan{milliseconds{19'000}, Qt::PreciseTimer}));
  EXPECT_EQ(TimerPlan::of({seconds{10}, milliseconds{1'500}}),
            (TimerPlan{milliseconds{10'527}, Qt::CoarseTimer}));
  EXPECT_EQ(TimerPlan::of({seconds{10}, milliseconds{0}}), (TimerPlan{seconds{10}, Qt::PreciseTimer}));
  EXPECT_EQ(TimerPlan::of({milliseconds{0}, milliseconds{0}}),
            (TimerPlan{milliseconds{1}, Qt::PreciseTimer}));
}

TEST(LinuxClock, repeatsAndForgetsWhatIsGone) {
  LinuxClock clock;
  QObject context;
  auto gone = std::make_unique<QObject>();
  int calls = 0;
  int missed = 0;
  clock.every({milliseconds{2}}, &context, [&] { ++calls; });
  clock.every({milliseconds{1}}, gone.get(), [&] { ++missed; });
  clock.after(milliseconds{1}, gone.get(), [&] { ++missed; });
  gone.reset();
  EXPECT_TRUE(waitUntil([&] { return calls == 3; }));
  EXPECT_EQ(missed, 0);
}

using support::startChild;
using support::statusOf;

TEST(Termination, isAskedForOnTheMainThread) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    int requests = 0;
    const Termination termination([&] { ++requests; });
    raise(signal);
    EXPECT_EQ(requests, 0);
    EXPECT_TRUE(waitUntil([&] { return requests == 1; }));
  }
}

TEST(Termination, comesAtOnceTheSecondTime) {
  const Termination termination([] {});
  const int status = statusOf(startChild([] {
    raise(SIGTERM);
    raise(SIGINT);
    return true;
  }));
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGINT);
}

TEST(Termination, leavesIgnoredSignalsIgnored) {
  std::signal(SIGHUP, SIG_IGN);
  {
    const Termination termination([] {});
    raise(SIGHUP);
  }
  EXPECT_EQ(std::signal(SIGHUP, SIG_DFL), SIG_IGN);
}

}  // namespace
}  // namespace spacemint
