#include "AppServices/AppServices.h"

#include "AppServices/Notices.h"
#include "AppServices/Usage.h"
#include "services/ServicesFixture.h"

#include <QJsonDocument>
#include <QJsonObject>

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

using support::WebAnswer;

constexpr auto twoMessages = R"({"messages": [
  {"id": "a", "title": "First", "body": "One.", "link": {"title": "More", "url": "https://spacemint.example/a"}},
  {"id": "b", "title": "Second", "body": "Two."}]})";

class NoticesTest : public ServicesTest {
 protected:
  NoticesTest() {
    serve("/feed/spacemint.json", {.body = twoMessages});
    serve("/i/v0/e/", {});
  }

  AppInfo info{.name = "Spacemint",
               .version = "1.2",
               .slug = "spacemint",
               .site = server.address() + "/feed",
               .usageHost = server.address()};
  std::vector<std::string> opened;
  std::unique_ptr<Usage> usage;
  std::unique_ptr<Notices> notices;

  void make(std::chrono::milliseconds interval = std::chrono::hours{24}) {
    const auto today = [this] { return day; };
    notices.reset();
    usage = std::make_unique<Usage>(
        Usage::Host{.info = info, .defaults = defaults, .web = web, .today = today, .systemVersion = "12.0"});
    notices = std::make_unique<Notices>(
        Notices::Host{.info = info,
                      .defaults = defaults,
                      .web = web,
                      .usage = *usage,
                      .today = today,
                      .openUrl = [this](const std::string& url, const auto&) { opened.push_back(url); },
                      .interval = interval});
  }
  bool shows(const char* title) {
    return support::waitUntil(
        [&] { return notices->isShowing() && notices->title() == QLatin1String(title); });
  }
  auto seen() const { return defaults.strings(Notices::seenKey).value_or(std::vector<std::string>{}); }
};

TEST_F(NoticesTest, theQuestionIsAnsweredOnce) {
  struct Case {
    const char* what;
    std::function<void(Notices&, Usage&)> answer;
    bool isAllowed;
  };
  const Case cases[]{
      {"Share", [](Notices& n, Usage&) { n.choosePrimary(); }, true},
      {"Don't share", [](Notices& n, Usage&) { n.chooseSecondary(); }, false},
      {"Close", [](Notices& n, Usage&) { n.dismiss(); }, false},
      {"the switch in the settings", [](Notices&, Usage& u) { u.setAllowed(true); }, true},
  };
  for (const Case& c : cases) {
    defaults.remove(UsageConsent::shareKey);
    make();
    notices->start();
    const auto reports = server.count("/i/v0/e/");
    day += "1";  // each on its own day
    c.answer(*notices, *usage);
    EXPECT_EQ(usage->isAllowed(), c.isAllowed) << c.what;
    ASSERT_TRUE(shows("First")) << c.what;
    settle();
    EXPECT_EQ(server.count("/i/v0/e/"), reports + (c.isAllowed ? 1 : 0)) << c.what;
  }
}

TEST_F(NoticesTest, dismissedMessagesDoNotComeBack) {
  defaults.set(UsageConsent::shareKey, false);
  make();
  notices->start();
  ASSERT_TRUE(shows("First"));
  EXPECT_EQ(notices->primary().toStdString(), "More");
  EXPECT_EQ(notices->secondary().toStdString(), "");
  notices->choosePrimary();
  EXPECT_THAT(opened, testing::ElementsAre("https://spacemint.example/a"));
  ASSERT_TRUE(shows("Second"));
  EXPECT_EQ(notices->primary().toStdString(), "");
  notices->dismiss();
  EXPECT_FALSE(notices->isShowing());
  EXPECT_EQ(notices->title().toStdString(), "Second");  // leaves with its text
  EXPECT_THAT(seen(), testing::ElementsAre("a", "b"));
  make();
  notices->start();
  settle();
  EXPECT_FALSE(notices->isShowing());
}

TEST_F(NoticesTest, whatCannotBeStoredIsNotShownAgainAtOnce) {
  defaults.set(UsageConsent::shareKey, false);
  DefaultsStore fixed{defaults.path(), DefaultsStore::Access::readOnly};
  defaults = std::move(fixed);
  make();
  notices->start();
  ASSERT_TRUE(shows("First"));
  notices->dismiss();
  ASSERT_TRUE(shows("Second"));
}

TEST_F(NoticesTest, failuresAreSilent) {
  defaults.set(UsageConsent::shareKey, false);
  make();
  for (const WebAnswer& answer :
       {WebAnswer{.status = 404, .body = twoMessages}, WebAnswer{.status = 203, .body = twoMessages},
        WebAnswer{.body = "<html>"}, WebAnswer{.body = twoMessages, .length = 9'000},
        WebAnswer{.body = twoMessages + QByteArray(1'000'000, ' ')}}) {
    serve("/feed/spacemint.json", answer);
    const auto before = server.count("/feed/spacemint.json");
    notices->refresh();
    ASSERT_TRUE(comes("/feed/spacemint.json", before + 1));
    settle();
    EXPECT_FALSE(notices->isShowing()) << answer.status;
  }
  serve("/feed/spacemint.json", {.body = twoMessages, .type = "text/plain"});
  notices->refresh();
  EXPECT_TRUE(shows("First"));
}

TEST_F(NoticesTest, theFeedIsAskedForAgainAndAgain) {
  defaults.set(UsageConsent::shareKey, false);
  serve("/feed/spacemint.json", {.status = 500});
  make(std::chrono::milliseconds{1});
  notices->start();
  notices->start();
  EXPECT_TRUE(comes("/feed/spacemint.json", 3));
}

TEST_F(NoticesTest, withoutANameOrASiteThereIsNothingToAsk) {
  info.slug.reset();
  make();
  notices->start();
  info.slug = "spacemint";
  info.site.reset();
  defaults.set(UsageConsent::shareKey, false);
  make();
  notices->start();
  settle();
  EXPECT_FALSE(notices->isShowing());
  EXPECT_EQ(server.requests().size(), 1U);
}

TEST(FeedAddress, addsTheProductToTheSite) {
  for (const char* site : {"https://spacemint.example/feed", "https://spacemint.example/feed/"})
    EXPECT_EQ(feedAddress(site, "a b").toEncoded(), "https://spacemint.example/feed/a%20b.json");
  EXPECT_EQ(feedAddress("https://spacemint.example", "a").toEncoded(), "https://spacemint.example/a.json");
}

using testing::MatchesRegex;

constexpr auto reports = "/i/v0/e/";

class UsageTest : public ServicesTest {
 protected:
  UsageTest() { serve(reports, {}); }

  Usage make() {
    return make({.version = "1.2", .slug = "spacemint", .usageHost = server.address()}, defaults);
  }
  Usage make(AppInfo info, DefaultsStore& store) {
    return Usage{{.info = std::move(info),
                  .defaults = store,
                  .web = web,
                  .today = [this] { return day; },
                  .systemVersion = "12.0"}};
  }
  std::optional<std::string> stored(const char* key) const { return defaults.string(key); }
  bool isMarked() {
    return support::waitUntil([&] { return stored(UsageConsent::sentOnKey) == day; });
  }
};

TEST_F(UsageTest, nothingIsSentWithoutConsent) {
  Usage usage = make();
  usage.sendIfDue();
  usage.setAllowed(false);
  usage.sendIfDue();
  settle();
  EXPECT_EQ(server.count(reports), 0);
  EXPECT_EQ(usage.isAllowed(), false);
  EXPECT_EQ(stored(UsageConsent::installKey), std::nullopt);
}

TEST_F(UsageTest, nothingIsSentForAProductWithoutNameOrServer) {
  Usage nameless = make({.usageHost = server.address()}, defaults);
  nameless.setAllowed(true);
  Usage homeless = make({.slug = "spacemint"}, defaults);
  homeless.sendIfDue();
  settle();
  EXPECT_EQ(server.count(reports), 0);
  EXPECT_EQ(stored(UsageConsent::installKey), std::nullopt);
}

TEST_F(UsageTest, aDayIsReportedOnce) {
  Usage usage = make();
  usage.setAllowed(true);
  ASSERT_TRUE(isMarked());
  usage.sendIfDue();
  settle();
  ASSERT_EQ(server.count(reports), 1);

  const support::WebRequest request = server.requests().front();
  const std::string id = stored(UsageConsent::installKey).value_or("");
  EXPECT_THAT(id, MatchesRegex("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}"));
  EXPECT_EQ(request.method, "POST");
  EXPECT_EQ(request.headers.value("content-type"), "application/json");
  const std::string expected =
      R"({"api_key":"phc_Q7mZ2vR9kLx4TnB8wYc3HdJ6pFs1GaE5uKo0NiVrWq2T","event":"app_active","distinct_id":")" +
      id +
      R"(","properties":{"product":"spacemint","version":"1.2","os_version":"12.0","arch":"arm64",)"
      R"("$process_person_profile":false,"$geoip_disable":true,"$lib":"brindlekit"}})";
  EXPECT_EQ(QJsonDocument::fromJson(request.body),
            QJsonDocument::fromJson(QByteArray::fromStdString(expected)));

  day = "2026-03-02";
  usage.sendIfDue();
  ASSERT_TRUE(isMarked());
  EXPECT_EQ(server.count(reports), 2);
  EXPECT_EQ(stored(UsageConsent::installKey), id);
}

TEST_F(UsageTest, onlyAPlainYesMarksTheDay) {
  for (const WebAnswer& answer : {WebAnswer{.status = 204}, WebAnswer{.status = 500},
                                  WebAnswer{.status = 201}, WebAnswer{.body = "{", .length = 9}}) {
    serve(reports, answer);
    Usage usage = make();
    const auto before = server.count(reports);
    usage.setAllowed(true);
    ASSERT_TRUE(comes(reports, before + 1));
    settle();
    EXPECT_EQ(stored(UsageConsent::sentOnKey), std::nullopt) << answer.status;
  }
}

TEST_F(UsageTest, withdrawingForgetsTheInstallation) {
  Usage usage = make();
  usage.setAllowed(true);
  ASSERT_TRUE(isMarked());
  const auto id = stored(UsageConsent::installKey);
  usage.toggle();
  EXPECT_FALSE(usage.isShared());
  EXPECT_EQ(stored(UsageConsent::installKey), std::nullopt);
  EXPECT_EQ(stored(UsageConsent::sentOnKey), std::nullopt);
  usage.toggle();
  ASSERT_TRUE(comes(reports, 2));
  EXPECT_NE(stored(UsageConsent::installKey), id);
}

TEST_F(UsageTest, anAnswerAfterTheWithdrawalChangesNothing) {
  Usage usage = make();
  // Another process withdraws while the report is on its way.
  server.setHandler([this](const auto&) {
    DefaultsStore other{defaults.path()};
    UsageConsent{other}.setAllowed(false);
    return WebAnswer{};
  });
  usage.setAllowed(true);
  ASSERT_TRUE(comes(reports));
  settle();
  EXPECT_EQ(DefaultsStore{defaults.path()}.string(UsageConsent::sentOnKey), std::nullopt);
  usage.sendIfDue();
  settle();
  EXPECT_EQ(server.count(reports), 1);
}

TEST_F(UsageTest, nothingIsSentUnderANameThatCannotBeKept) {
  Usage usage = make();
  ASSERT_TRUE(defaults.set(UsageConsent::shareKey, true));
  DefaultsStore fixed{defaults.path(), DefaultsStore::Access::readOnly};
  Usage bound = make({.slug = "spacemint", .usageHost = server.address()}, fixed);
  bound.sendIfDue();
  bound.setAllowed(false);
  settle();
  EXPECT_EQ(server.count(reports), 0);
}

TEST(UsageAddress, isAHostOverHttps) {
  EXPECT_EQ(usageAddress("events.spacemint.example").toString().toStdString(),
            "https://events.spacemint.example/i/v0/e/");
  EXPECT_EQ(usageAddress("https://events.spacemint.example:444/x").toString().toStdString(),
            "https://events.spacemint.example:444/i/v0/e/");
  EXPECT_FALSE(WebClient::mayAsk(usageAddress("http://events.spacemint.example")));
  EXPECT_FALSE(WebClient::mayAsk(usageAddress("")));
}

}  // namespace
}  // namespace spacemint
