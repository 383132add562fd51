#include "Spacemint/desktop/linux/DBusNotifier.h"

#include "support/FakeNotifications.h"
#include "support/PrivateBus.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <optional>

namespace spacemint {
namespace {

using support::FakeNotifications;
using support::PrivateBus;
using support::waitUntil;

class DBusNotifierTest : public testing::Test {
 protected:
  DBusNotifierTest() {
    QObject::connect(&notifier, &Notifier::activated, &notifier, [this] { ++activations; });
    QObject::connect(&notifier, &Notifier::serviceAppeared, &notifier, [this] { ++appearances; });
  }

  void startService(const QStringList& capabilities = {}) { service.emplace(serviceBus, capabilities); }

  bool arrived(std::size_t count) {
    return waitUntil([&] { return service->shown.size() == count; }) && settled();
  }

  // Answers come in the order of the questions, so this one comes after all that was under way.
  bool settled() { return ask() != std::nullopt; }

  using Question = std::function<void(QObject*, Notifier::Answer)>;

  std::optional<bool> ask() {
    return answered(
        [&](QObject* context, const Notifier::Answer& answer) { notifier.askIfAllowed(context, answer); });
  }
  // Whether the service accepted the notification.
  std::optional<bool> show(const Notification& notification) {
    return answered([&](QObject* context, const Notifier::Answer& answer) {
      notifier.show(notification, context, answer);
    });
  }
  // Does not wait for the answer.
  void post(const Notification& notification) {
    notifier.show(notification, &notifier, [](bool) {});
  }

  static std::optional<bool> answered(const Question& question) {
    std::optional<bool> answer;
    QObject context;
    question(&context, [&](bool is) { answer = is; });
    waitUntil([&] { return answer.has_value(); });
    return answer;
  }

  PrivateBus bus;
  QDBusConnection serviceBus = bus.connection();
  DBusNotifier notifier{bus.connection()};
  std::optional<FakeNotifications> service;
  int activations = 0;
  int appearances = 0;
};

TEST_F(DBusNotifierTest, saysWhatTheServiceNeeds) {
  startService();
  post({.title = "Low", .body = "a < b & c"});
  post({.title = "Critical", .body = "Körper", .isCritical = true, .hasSound = true});
  ASSERT_TRUE(arrived(2));
  const auto& normal = service->shown[0];
  EXPECT_EQ(normal.application, QStringLiteral("Spacemint"));
  EXPECT_EQ(normal.icon, QStringLiteral("app.spacemint.Spacemint"));
  EXPECT_EQ(normal.summary, QStringLiteral("Low"));
  EXPECT_EQ(normal.body, QStringLiteral("a < b & c"));
  EXPECT_EQ(normal.actions, (QStringList{QStringLiteral("default"), QStringLiteral("Open Spacemint")}));
  EXPECT_EQ(normal.timeout, -1);
  EXPECT_EQ(normal.hints.value(QStringLiteral("urgency")), QVariant::fromValue(uchar{1}));
  EXPECT_EQ(normal.hints.value(QStringLiteral("desktop-entry")).toString(),
            QStringLiteral("app.spacemint.Spacemint"));
  EXPECT_FALSE(normal.hints.contains(QStringLiteral("sound-name")));
  const auto& critical = service->shown[1];
  EXPECT_EQ(critical.body, QStringLiteral("Körper"));
  EXPECT_EQ(critical.hints.value(QStringLiteral("urgency")), QVariant::fromValue(uchar{2}));
  EXPECT_TRUE(critical.hints.contains(QStringLiteral("sound-name")));
}

TEST_F(DBusNotifierTest, writesMarkupWhereTheServiceReadsIt) {
  startService({QStringLiteral("body-markup")});
  post({.title = "a < b", .body = "a < b & c"});
  ASSERT_TRUE(arrived(1));
  EXPECT_EQ(service->shown[0].summary, QStringLiteral("a < b"));
  EXPECT_EQ(service->shown[0].body, QStringLiteral("a &lt; b &amp; c"));
}

TEST_F(DBusNotifierTest, tellsOfClicksOnItsOwn) {
  startService();
  post({.title = "Ours"});
  ASSERT_TRUE(arrived(1));
  const QString action = QStringLiteral("default");
  Q_EMIT service->ActionInvoked(2, action);
  Q_EMIT service->ActionInvoked(1, QStringLiteral("other"));
  ASSERT_TRUE(settled());
  EXPECT_EQ(activations, 0);
  Q_EMIT service->ActionInvoked(1, action);
  ASSERT_TRUE(settled());
  EXPECT_EQ(activations, 1);
  Q_EMIT service->NotificationClosed(1, 2);
  Q_EMIT service->ActionInvoked(1, action);
  ASSERT_TRUE(settled());
  EXPECT_EQ(activations, 1);
}

TEST_F(DBusNotifierTest, isNotAllowedWithoutAServiceAndComesBackWithOne) {
  EXPECT_EQ(ask(), false);
  EXPECT_EQ(show({.title = "Nobody sees this"}), false);
  EXPECT_EQ(appearances, 0);
  startService();
  EXPECT_TRUE(waitUntil([&] { return appearances == 1; }));
  EXPECT_EQ(ask(), true);
  EXPECT_TRUE(service->shown.empty());
  EXPECT_EQ(show({.title = "Somebody sees this"}), true);
  EXPECT_TRUE(arrived(1));
  service.reset();
  EXPECT_EQ(show({.title = "Nobody sees this"}), false);
  EXPECT_EQ(appearances, 1);
}

TEST_F(DBusNotifierTest, forgetsWhatAnEarlierServiceShowed) {
  startService();
  post({.title = "Before"});
  ASSERT_TRUE(arrived(1));
  service.reset();
  startService({QStringLiteral("body-markup")});
  ASSERT_TRUE(settled());
  Q_EMIT service->ActionInvoked(1, QStringLiteral("default"));
  ASSERT_TRUE(settled());
  EXPECT_EQ(activations, 0);
  post({.title = "After", .body = "<"});
  ASSERT_TRUE(arrived(1));
  EXPECT_EQ(service->shown[0].body, QStringLiteral("&lt;"));
  Q_EMIT service->ActionInvoked(1, QStringLiteral("default"));
  ASSERT_TRUE(settled());
  EXPECT_EQ(activations, 1);
}

TEST_F(DBusNotifierTest, answersNobodyWhoIsGone) {
  startService();
  bool isAnswered = false;
  const auto answer = [&](bool) { isAnswered = true; };
  auto context = std::make_unique<QObject>();
  notifier.show({.title = "Low"}, context.get(), answer);
  notifier.askIfAllowed(context.get(), answer);
  context.reset();
  ASSERT_TRUE(arrived(1));
  EXPECT_FALSE(isAnswered);
}

TEST(DBusNotifier, doesNothingWithoutABus) {
  DBusNotifier notifier{QDBusConnection{QStringLiteral("no such connection")}};
  int refusals = 0;
  const auto count = [&](bool isAccepted) { refusals += isAccepted ? 0 : 1; };
  notifier.show({.title = "Nobody sees this"}, &notifier, count);
  notifier.requestAuthorization(&notifier, count);
  EXPECT_TRUE(waitUntil([&] { return refusals == 2; }));
}

}  // namespace
}  // namespace spacemint
