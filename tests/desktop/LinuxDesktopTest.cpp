#include "Spacemint/desktop/linux/LinuxDesktop.h"

#include "support/Waiting.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

using support::waitUntil;

TEST(LinuxDesktop, isThereAlsoWithoutASession) {
  LinuxDesktop linuxDesktop;
  const Desktop desktop = linuxDesktop.desktop();
  const auto allowed = desktop.notifier.isAllowed();
  bool isDone = false;
  desktop.tasks.start({.work = [] {}, .done = [&] { isDone = true; }});
  EXPECT_TRUE(waitUntil([&] { return isDone && allowed.isFinished(); }));
  EXPECT_FALSE(allowed.result());
  EXPECT_TRUE(desktop.volume.status());
  EXPECT_TRUE(linuxDesktop.finishTasks(std::chrono::seconds{20}));
}

}  // namespace
}  // namespace spacemint
