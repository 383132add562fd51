#include "AppServices/AppServices.h"

#include "services/ServicesFixture.h"

#include <fstream>

namespace spacemint {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AppServicesTest : public ServicesTest {
 protected:
  AppServices make(AppInfo info) {
    return AppServices{{.info = std::move(info),
                        .defaults = defaults,
                        .package = "spacemint",
                        .updatesFolder = folder / "updates",
                        .today = [this] { return day; },
                        .openUrl = [](const std::string&, const auto&) {}}};
  }
  AppInfo everything() {
    return {.identifier = "app.spacemint.Spacemint",
            .name = "Spacemint",
            .version = "1.2",
            .slug = "spacemint",
            .site = server.address(),
            .usageHost = server.address(),
            .updateFeed = server.address() + "/feed.xml",
            .updateKey = std::string(43, 'A') + "="};
  }
  static std::vector<std::string> titles(const AppServices& services) {
    std::vector<std::string> titles;
    for (const auto& item : services.menuItems()) titles.push_back(item.title.toStdString());
    return titles;
  }
};

TEST_F(AppServicesTest, withoutAnIdentifierThereIsNothing) {
  defaults.set(UsageConsent::shareKey, true);
  defaults.set(Updates::checkKey, true);
  AppInfo info = everything();
  info.identifier.reset();
  AppServices services = make(info);
  services.start(true);
  EXPECT_EQ(services.usage(), nullptr);
  EXPECT_EQ(services.notices(), nullptr);
  EXPECT_EQ(services.updates(), nullptr);
  EXPECT_THAT(titles(services), IsEmpty());
  settle();
  EXPECT_EQ(server.requests().size(), 1U);  // our own
}

TEST_F(AppServicesTest, updatesAreThereWhereAFeedIs) {
  AppInfo info = everything();
  AppServices services = make(info);
  services.start(true);
  EXPECT_NE(services.updates(), nullptr);
  EXPECT_THAT(titles(services), ElementsAre("Check for Updates…", "Share Anonymous Usage"));
  const Notices* notices = services.notices();
  services.start(true);
  EXPECT_EQ(services.notices(), notices);

  AppServices unwanted = make(info);
  unwanted.start(false);
  EXPECT_EQ(unwanted.updates(), nullptr);
  info.updateFeed.reset();
  AppServices without = make(info);
  without.start(true);
  EXPECT_EQ(without.updates(), nullptr);
  EXPECT_NE(without.notices(), nullptr);
  EXPECT_THAT(titles(without), ElementsAre("Share Anonymous Usage"));

  for (auto field : {&AppInfo::slug, &AppInfo::usageHost}) {
    AppInfo mute = info;
    (mute.*field).reset();
    AppServices unheard = make(mute);
    unheard.start(true);
    EXPECT_THAT(titles(unheard), IsEmpty()) << "nothing can be shared";
    EXPECT_FALSE(unheard.notices()->isShowing()) << "and so nothing is asked";
  }
}

TEST_F(AppServicesTest, theDictionaryNamesEverything) {
  const std::string path = folder / "Info.plist";
  std::ofstream(path) << R"(<plist version="1.0"><dict>
    <key>CFBundleIdentifier</key><string>id</string><key>CFBundleDisplayName</key><string>Name</string>
    <key>CFBundleShortVersionString</key><string>1.2</string><key>BrindlefoxSlug</key><string>slug</string>
    <key>BrindlefoxSite</key><string>site</string><key>BrindlefoxUsageHost</key><string>host</string>
    <key>SUFeedURL</key><string>feed</string><key>SUPublicEDKey</key><integer>1</integer></dict></plist>)";
  const AppInfo info = AppInfo::load(path);
  EXPECT_EQ(info.identifier, "id");
  EXPECT_EQ(info.name, "Name");
  EXPECT_EQ(info.version, "1.2");
  EXPECT_EQ(info.slug, "slug");
  EXPECT_EQ(info.site, "site");
  EXPECT_EQ(info.usageHost, "host");
  EXPECT_EQ(info.updateFeed, "feed");
  EXPECT_EQ(info.updateKey, std::nullopt);
  EXPECT_EQ(AppInfo::load(folder / "none").identifier, std::nullopt);
  AppServices services = make({});
  EXPECT_EQ(services.name(), QCoreApplication::applicationName().toStdString());
}

TEST(SystemFacts, haveTwoNumbers) {
  const std::pair<const char*, const char*> cases[]{
      {"12", "12.0"},  {"22.04.3", "22.04"}, {"6.1.0-18-amd64", "6.1"},
      {"15.", "15.0"}, {"13beta", "13.0"},   {"unknown", ""},
      {"", ""},
  };
  for (const auto& [version, text] : cases) EXPECT_EQ(majorAndMinor(version), text) << version;
  const SystemFacts facts = SystemFacts::current();
  EXPECT_THAT(facts.version, testing::MatchesRegex("[0-9]+\\.[0-9]+"));
  EXPECT_THAT(facts.kernel, testing::MatchesRegex("[0-9]+\\.[0-9]+"));
}

TEST(DayText, isThatOfThePlace) {
  const Date evening = std::chrono::sys_days{std::chrono::year{2026} / 3 / 1} + std::chrono::hours{23};
  EXPECT_EQ(dayText(evening, "UTC"), "2026-03-01");
  EXPECT_EQ(dayText(evening, "Europe/Berlin"), "2026-03-02");
  EXPECT_EQ(dayText(evening, "Nowhere/Land"), "2026-03-01");
}

}  // namespace
}  // namespace spacemint
