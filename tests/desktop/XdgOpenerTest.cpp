#include "Spacemint/desktop/linux/XdgOpener.h"

#include "support/FakeOpeners.h"
#include "support/PrivateBus.h"
#include "support/TemporaryFolder.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace spacemint {
namespace {

using support::FakeFileManager;
using support::FakePortal;
using support::PrivateBus;
using support::waitUntil;
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
  opener.openSettings(Page::automation);
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
  std::ofstream{program} << "#!/bin/sh\n: > \"$0.done\"\n";
  open();
  EXPECT_TRUE(waitUntil([&] { return std::filesystem::exists(program + ".done"); }));
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
