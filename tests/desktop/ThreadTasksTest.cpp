#include "Spacemint/desktop/linux/ThreadTasks.h"

#include "support/Waiting.h"

#include <gmock/gmock.h>

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <future>
#include <latch>
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
  EXPECT_EQ(policy, SCHED_BATCH);  // SCHED_IDLE could stand still for minutes
  EXPECT_EQ(niceness, 19);
  EXPECT_EQ(sched_getscheduler(0), SCHED_OTHER);
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

TEST(ThreadTasks, givesTheResultAsAFuture) {
  ThreadTasks tasks;
  QObject context;
  std::string text;
  tasks.run(Priority::utility, [] { return std::string{"result"}; })
      .then(&context, [&](const std::string& result) { text = result; });
  EXPECT_TRUE(waitUntil([&] { return text == "result"; }));
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

}  // namespace
}  // namespace spacemint
