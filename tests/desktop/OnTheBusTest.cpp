// Who is the one running application, on a real bus.

#include "Spacemint/desktop/linux/DBusCall.h"
#include "Spacemint/desktop/linux/DBusNotifier.h"
#include "Spacemint/desktop/linux/PanelColour.h"
#include "Spacemint/desktop/linux/RunningInstance.h"
#include "Spacemint/desktop/linux/StatusNotifierItem.h"
#include "Spacemint/desktop/linux/XdgOpener.h"
#include "support/BusServices.h"
#include "support/TemporaryFolder.h"
#include "support/Waiting.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <gmock/gmock.h>

#include <signal.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>

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

TEST(RunningInstance, doesWhatItIsAsked) {
  support::PrivateBus bus;
  RunningInstance running{bus.connection(), Kind::windows};
  std::vector<LaunchAction> asked;
  QObject::connect(&running, &RunningInstance::asked, &running,
                   [&](LaunchAction action) { asked.push_back(action); });
  std::vector<std::string> folders;
  QObject::connect(&running, &RunningInstance::askedFor, &running,
                   [&](const std::string& folder) { folders.push_back(folder); });
  ASSERT_TRUE(running.become());
  const auto call = [&](const char* method, const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("app.spacemint.Spacemint"), QStringLiteral("/app/spacemint/Spacemint"),
        QStringLiteral("org.freedesktop.Application"), QLatin1String(method));
    message.setArguments(arguments);
    bus.connection().asyncCall(message);
  };
  call("Activate", {QVariantMap{}});
  for (const char* name : {"settings", "scan", "frobnicate"}) {
    call("ActivateAction", {QLatin1String(name), QVariantList{}, QVariantMap{}});
  }
  for (const char* url : {"file:///srv/a%20b", "https://example.org/a"}) {
    call("Open", {QStringList{QLatin1String(url)}, QVariantMap{}});
  }
  EXPECT_TRUE(waitUntil([&] { return asked.size() == 5; }));
  EXPECT_THAT(asked, testing::ElementsAre(LaunchAction::open, LaunchAction::settings, LaunchAction::scan,
                                          LaunchAction::open, LaunchAction::open));
  EXPECT_THAT(folders, testing::ElementsAre("/srv/a b"));
}

// Plasma's themes with colours of their own come before the colours of windows; a file may be damaged.
TEST(PanelColour, followsPlasma) {
  support::PrivateBus bus;
  const support::TemporaryFolder folder;
  const std::string themes = folder / "plasma/desktoptheme";
  std::filesystem::create_directories(themes + "/ink");
  const auto write = [](const std::string& file, std::string_view text) { std::ofstream(file) << text; };
  const auto scheme = [](std::string_view ground) {
    return "[Colors:Window]\nBackgroundNormal=" + std::string{ground} + "\n";
  };
  write(themes + "/ink/colors", scheme("27,30,32"));
  const QString place = QString::fromStdString(folder.path());
  struct Case {
    std::string theme;
    std::string colours;
    std::optional<bool> isDark;
  };
  for (const Case& one : {Case{"", "", std::nullopt}, Case{"", scheme("239,240,241"), false},
                          Case{"default", scheme("27,30,32"), true}, Case{"ink", scheme("239,240,241"), true},
                          Case{"gone", scheme("239,240,241"), false}, Case{"", "\xff[[", std::nullopt}}) {
    write(folder / "plasmarc", one.theme.empty() ? "" : "[Theme]\nname=" + one.theme + "\n");
    write(folder / "kdeglobals", one.colours);
    PanelColour panel{bus.connection(), QStringLiteral("KDE"), {.config = place, .data = {place}}};
    panel.follow();
    EXPECT_EQ(panel.isDark(), one.isDark) << one.theme << one.colours;
  }
  PanelColour panel{bus.connection(), QStringLiteral("KDE"), {.config = place, .data = {place}}};
  panel.follow();
  write(folder / "new", scheme("27,30,32"));
  std::filesystem::rename(folder / "new", folder / "kdeglobals");
  EXPECT_TRUE(waitUntil([&] { return panel.isDark() == true; }));
}

TEST(PanelColour, followsXfceAndIsAGuessElsewhere) {
  support::PrivateBus bus;
  const auto guess = [&](const char* desktop) {
    PanelColour panel{bus.connection(), QLatin1String(desktop), {}};
    panel.follow();
    return panel.isDark();
  };
  EXPECT_EQ(guess("ubuntu:GNOME"), true);
  EXPECT_EQ(guess("labwc:wlroots"), true);
  EXPECT_EQ(guess("MATE"), std::nullopt);
  EXPECT_EQ(guess(""), std::nullopt);
  EXPECT_EQ(guess("XFCE"), true) << "until Xfce answers";
  support::FakeXfconf xfconf{bus.connection()};
  PanelColour panel{bus.connection(), QStringLiteral("XFCE"), {}};
  panel.follow();
  EXPECT_TRUE(waitUntil([&] { return panel.isDark() == false; }));
  Q_EMIT xfconf.PropertyChanged(QStringLiteral("xfce4-panel"), QStringLiteral("/panels/dark-mode"),
                                QDBusVariant{true});
  EXPECT_TRUE(waitUntil([&] { return panel.isDark() == true; }));
}

using support::PrivateBus;

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

using support::FakeNotifications;

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

using support::FakeFileDialog;
using support::FakeFileManager;
using support::FakePortal;
using testing::ElementsAre;
using testing::IsEmpty;
using Page = Opener::SettingsPage;

class XdgOpenerTest : public testing::Test {
 protected:
  PrivateBus bus;
  QDBusConnection services = bus.connection();
  std::vector<std::string> opened;
  std::vector<SettingsProgram> started;
  bool canStart = true;
  bool hasProgram = true;
  int failures = 0;
  XdgOpener opener{bus.connection(),
                   {.help = "/usr/share/doc/help me.html",
                    .surroundings = {.desktop = "ubuntu:GNOME"},
                    .openByProgram =
                        [this](const std::string& url, const std::function<void()>& failed) {
                          opened.push_back(url);
                          if (!hasProgram && failed) failed();
                        },
                    .start =
                        [this](const SettingsProgram& program) {
                          started.push_back(program);
                          return canStart;
                        }}};
};

TEST_F(XdgOpenerTest, asksTheFileManagerToShowAFileOfAnyName) {
  FakeFileManager manager(services);
  opener.reveal("/home/ann/a b\xff#%");
  ASSERT_TRUE(waitUntil([&] { return !manager.opened.empty(); }));
  EXPECT_EQ(manager.opened, QStringList{QStringLiteral("file:///home/ann/a%20b%FF%23%25")});
  EXPECT_THAT(opened, IsEmpty());
}

TEST_F(XdgOpenerTest, opensTheFolderWithoutSuchAFileManager) {
  opener.reveal("/home/ann/a b/c");
  ASSERT_TRUE(waitUntil([&] { return !opened.empty(); }));
  EXPECT_THAT(opened, ElementsAre("file:///home/ann/a%20b"));
}

TEST_F(XdgOpenerTest, opensWebPagesByThePortalAndFilesByProgram) {
  FakePortal portal(services);
  opener.openUrl("https://example.org/?a=b", {});
  opener.openUrl("file:///tmp/a", {});
  ASSERT_TRUE(waitUntil([&] { return !portal.opened.empty(); }));
  EXPECT_EQ(portal.opened, QStringList{QStringLiteral("https://example.org/?a=b")});
  EXPECT_THAT(opened, ElementsAre("file:///tmp/a"));
}

TEST_F(XdgOpenerTest, letsTheUserChooseAFile) {
  std::vector<std::string> chosen;
  const auto choose = [&] {
    opener.chooseFile(
        "Open", [&](const std::string& path) { chosen.push_back(path); }, [this] { ++failures; });
  };
  choose();
  ASSERT_TRUE(waitUntil([&] { return failures == 1; })) << "no portal";
  FakeFileDialog dialog(services);
  dialog.code = 1;
  choose();
  ASSERT_TRUE(waitUntil([&] { return dialog.opened.size() == 1; }));
  dialog.code = 0;
  dialog.answer = QStringLiteral("file:///srv/a%20b.json");
  choose();
  ASSERT_TRUE(waitUntil([&] { return !chosen.empty(); }));
  EXPECT_THAT(chosen, ElementsAre("/srv/a b.json"));
  EXPECT_EQ(failures, 1);
}

TEST_F(XdgOpenerTest, opensWebPagesByProgramWithoutAPortal) {
  hasProgram = false;
  opener.openUrl("https://example.org/", [this] { ++failures; });
  ASSERT_TRUE(waitUntil([&] { return failures == 1; }));
  EXPECT_THAT(opened, ElementsAre("https://example.org/"));
}

TEST_F(XdgOpenerTest, opensTheDesktopsSettingsElseTheHelp) {
  opener.openSettings(Page::notifications);
  EXPECT_THAT(started, ElementsAre(SettingsProgram{"gnome-control-center", {"notifications"}}));
  EXPECT_THAT(opened, IsEmpty());
  canStart = false;
  opener.openSettings(Page::notifications);
  opener.openSettings(Page::fullDiskAccess);
  EXPECT_THAT(opened,
              ElementsAre("file:///usr/share/doc/help%20me.html", "file:///usr/share/doc/help%20me.html"));
}

TEST(XdgOpen, tellsWhereNoProgramOpens) {
  const support::TemporaryFolder folder;
  const QByteArray path = qgetenv("PATH");
  qputenv("PATH", QByteArray::fromStdString(folder.path()));
  int failures = 0;
  const auto open = [&] { XdgOpener::Places::current().openByProgram("file:///a", [&] { ++failures; }); };
  open();
  EXPECT_TRUE(waitUntil([&] { return failures == 1; })) << "there is no xdg-open";
  const std::string program = folder / "xdg-open";
  std::ofstream{program} << "#!/bin/sh\n[ \"$1\" = file:///a ] && exit 3\n";
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  open();
  EXPECT_TRUE(waitUntil([&] { return failures == 2; })) << "xdg-open found no program";
  std::ofstream{program} << "#!/bin/sh\necho $$ >\"$0.done\"\n";
  open();
  EXPECT_TRUE(waitUntil([&] {
    pid_t pid = 0;
    return std::ifstream{program + ".done"} >> pid && kill(pid, 0) != 0;
  })) << "xdg-open ends";
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  qputenv("PATH", path);
  EXPECT_EQ(failures, 2);
}

TEST(SettingsPrograms, areThoseOfTheDesktop) {
  EXPECT_THAT(settingsPrograms(Page::notifications, {.desktop = "KDE"}),
              ElementsAre(SettingsProgram{"systemsettings", {"kcm_notifications"}},
                          SettingsProgram{"systemsettings5", {"kcm_notifications"}}));
  EXPECT_THAT(settingsPrograms(Page::notifications, {.desktop = "XFCE"}),
              ElementsAre(SettingsProgram{"xfce4-notifyd-config", {}}));
  EXPECT_THAT(settingsPrograms(Page::notifications, {.desktop = "KDENLIVE"}), IsEmpty());
  EXPECT_THAT(settingsPrograms(Page::fullDiskAccess, {.desktop = "GNOME"}), IsEmpty());
  EXPECT_THAT(
      settingsPrograms(Page::fullDiskAccess, {.desktop = "GNOME", .isSandboxed = true}),
      ElementsAre(SettingsProgram{
          "flatpak-spawn", {"--host", "gnome-control-center", "applications", "app.spacemint.Spacemint"}}));
}

}  // namespace
}  // namespace spacemint
