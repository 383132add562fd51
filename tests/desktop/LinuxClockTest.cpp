#include "Spacemint/desktop/linux/LinuxClock.h"

#include "support/Waiting.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using support::waitUntil;

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

}  // namespace
}  // namespace spacemint
