// Who is the one running application, on a real bus.

#include "Spacemint/desktop/linux/RunningInstance.h"

#include "support/PrivateBus.h"
#include "support/Waiting.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <gtest/gtest.h>

namespace spacemint {
namespace {

using Kind = RunningInstance::Kind;
using support::waitUntil;

TEST(RunningInstance, isTheFirstWithWindowsAndElseTheFirst) {
  support::PrivateBus bus;
  RunningInstance background{bus.connection(), Kind::background};
  bool isReplaced = false;
  QObject::connect(&background, &RunningInstance::replaced, &background, [&] { isReplaced = true; });
  ASSERT_TRUE(background.become());
  EXPECT_FALSE((RunningInstance{bus.connection(), Kind::background}.become()));
  EXPECT_FALSE(isReplaced);

  RunningInstance windows{bus.connection(), Kind::windows};
  ASSERT_TRUE(windows.become());
  EXPECT_TRUE(waitUntil([&] { return isReplaced; }));

  RunningInstance late{bus.connection(), Kind::windows};
  EXPECT_FALSE(late.become());
  EXPECT_FALSE((RunningInstance{bus.connection(), Kind::background}.become()));
}

TEST(RunningInstance, showsItselfWhenItIsAsked) {
  support::PrivateBus bus;
  RunningInstance running{bus.connection(), Kind::windows};
  bool isShown = false;
  QObject::connect(&running, &RunningInstance::activated, &running, [&] { isShown = true; });
  ASSERT_TRUE(running.become());
  QDBusMessage call = QDBusMessage::createMethodCall(
      QStringLiteral("app.spacemint.Spacemint"), QStringLiteral("/app/spacemint/Spacemint"),
      QStringLiteral("org.freedesktop.Application"), QStringLiteral("Activate"));
  call.setArguments({QVariantMap{}});
  bus.connection().asyncCall(call);
  EXPECT_TRUE(waitUntil([&] { return isShown; }));
}

TEST(RunningInstance, isTheOneWhereThereIsNoBus) {
  RunningInstance alone{QDBusConnection{QStringLiteral("none")}, Kind::windows};
  EXPECT_TRUE(alone.become());
}

}  // namespace
}  // namespace spacemint
