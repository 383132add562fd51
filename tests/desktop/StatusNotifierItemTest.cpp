// The status item and its menu as a status area meets them over the bus.

#include "Spacemint/desktop/linux/StatusNotifierItem.h"

#include "Spacemint/desktop/linux/DBusCall.h"
#include "support/PrivateBus.h"
#include "support/Waiting.h"

#include <QDBusMessage>
#include <gmock/gmock.h>

#include <optional>

namespace spacemint {
namespace {

using support::PrivateBus;
using support::waitUntil;

class StatusNotifierItemTest : public testing::Test {
 protected:
  StatusNotifierItemTest() {
    for (const char* title : {"Open", "", "Settings…", "Quit"}) {
      StatusMenuEntry entry{.title = title, .choose = {}};
      if (!entry.title.empty()) entry.choose = [this, title] { chosen.emplace_back(title); };
      entries.push_back(entry);
    }
    item.setMenu(entries);
    item.install();
  }

  QDBusMessage ask(const char* method, const QVariantList& arguments,
                   const char* interface = "com.canonical.dbusmenu") {
    QDBusMessage call = QDBusMessage::createMethodCall(service, QStringLiteral("/StatusNotifierItem/Menu"),
                                                       QLatin1String(interface), QLatin1String(method));
    call.setArguments(arguments);
    std::optional<QDBusMessage> reply;
    callAsync(host, call, &context, [&](const QDBusMessage& arrived) { reply = arrived; });
    EXPECT_TRUE(waitUntil([&] { return reply.has_value(); })) << method;
    return reply.value_or(QDBusMessage{});
  }

  QObject context;
  PrivateBus bus;
  QDBusConnection host = bus.connection();
  StatusNotifierItem item{bus.connection(), QStringLiteral("XFCE")};
  QString service = QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid());
  std::vector<StatusMenuEntry> entries;
  std::vector<std::string> chosen;
};

// Some status areas tell of one entry, others of several at once.
TEST_F(StatusNotifierItemTest, eachEntryIsChosenOneByOneAndInGroups) {
  const QDBusVariant noData{QVariant{0}};
  const QString clicked = QStringLiteral("clicked");
  for (int id = 1; id <= 4; ++id) {
    const auto reply = ask("Event", {id, clicked, QVariant::fromValue(noData), 0U});
    EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
  }
  EXPECT_THAT(chosen, testing::ElementsAre("Open", "Settings…", "Quit"));
  chosen.clear();
  const MenuEvents events{{1, clicked, noData, 0},
                          {9, clicked, noData, 0},
                          {4, clicked, noData, 0},
                          {3, QStringLiteral("hovered"), noData, 0}};
  const auto reply = ask("EventGroup", {QVariant::fromValue(events)});
  ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
  EXPECT_EQ(qdbus_cast<QList<int>>(reply.arguments().value(0)), QList<int>{9}) << "unknown ids are answered";
  EXPECT_TRUE(waitUntil([&] { return chosen.size() == 2; }));
  EXPECT_THAT(chosen, testing::ElementsAre("Open", "Quit"));
}

// A slot or signal whose types QtDBus does not know is left out with a warning, which fails this test by
// itself.
TEST_F(StatusNotifierItemTest, everyMethodAndSignalIsOnTheBus) {
  const QString description =
      ask("Introspect", {}, "org.freedesktop.DBus.Introspectable").arguments().value(0).toString();
  for (const char* name :
       {"GetLayout", "GetGroupProperties", "GetProperty", "Event", "EventGroup", "AboutToShow",
        "AboutToShowGroup", "ItemsPropertiesUpdated", "LayoutUpdated", "ItemActivationRequested"}) {
    EXPECT_TRUE(description.contains(QStringLiteral("name=\"%1\"").arg(QLatin1String(name)))) << name;
  }
}

}  // namespace
}  // namespace spacemint
