// What is shown at the bottom of the window, and when.

#include "AppServices/Notices.h"

#include "services/ServicesFixture.h"

namespace spacemint {
namespace {

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

  void make() {
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
                      .openUrl = [this](const std::string& url, const auto&) { opened.push_back(url); }});
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
  make();
  notices = std::make_unique<Notices>(Notices::Host{.info = info,
                                                    .defaults = defaults,
                                                    .web = web,
                                                    .usage = *usage,
                                                    .today = [this] { return day; },
                                                    .openUrl = [](const std::string&, const auto&) {},
                                                    .interval = std::chrono::milliseconds{1}});
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

}  // namespace
}  // namespace spacemint
