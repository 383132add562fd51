// The life of a consent, as the server sees it.

#include "AppServices/Usage.h"

#include "services/ServicesFixture.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace spacemint {
namespace {

using support::WebAnswer;
using testing::MatchesRegex;

constexpr auto path = "/i/v0/e/";

class UsageTest : public ServicesTest {
 protected:
  UsageTest() { serve(path, {}); }

  Usage make(std::optional<std::string> slug = "spacemint") {
    return Usage{{.info = {.version = "1.2", .slug = std::move(slug), .usageHost = server.address()},
                  .defaults = defaults,
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
  EXPECT_EQ(server.count(path), 0);
  EXPECT_EQ(usage.isAllowed(), false);
  EXPECT_EQ(stored(UsageConsent::installKey), std::nullopt);
}

TEST_F(UsageTest, nothingIsSentForAProductWithoutNameOrServer) {
  Usage nameless = make(std::nullopt);
  nameless.setAllowed(true);
  Usage homeless{{.info = {.slug = "spacemint"},
                  .defaults = defaults,
                  .web = web,
                  .today = [this] { return day; },
                  .systemVersion = "12.0"}};
  homeless.sendIfDue();
  settle();
  EXPECT_EQ(server.count(path), 0);
  EXPECT_EQ(stored(UsageConsent::installKey), std::nullopt);
}

TEST_F(UsageTest, aDayIsReportedOnce) {
  Usage usage = make();
  usage.setAllowed(true);
  ASSERT_TRUE(isMarked());
  usage.sendIfDue();
  settle();
  ASSERT_EQ(server.count(path), 1);

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
  EXPECT_EQ(server.count(path), 2);
  EXPECT_EQ(stored(UsageConsent::installKey), id);
}

TEST_F(UsageTest, onlyAPlainYesMarksTheDay) {
  for (const WebAnswer& answer : {WebAnswer{.status = 204}, WebAnswer{.status = 500},
                                  WebAnswer{.status = 201}, WebAnswer{.body = "{", .length = 9}}) {
    serve(path, answer);
    Usage usage = make();
    const auto before = server.count(path);
    usage.setAllowed(true);
    ASSERT_TRUE(comes(path, before + 1));
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
  ASSERT_TRUE(comes(path, 2));
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
  ASSERT_TRUE(comes(path));
  settle();
  EXPECT_EQ(DefaultsStore{defaults.path()}.string(UsageConsent::sentOnKey), std::nullopt);
  usage.sendIfDue();
  settle();
  EXPECT_EQ(server.count(path), 1);
}

TEST_F(UsageTest, nothingIsSentUnderANameThatCannotBeKept) {
  Usage usage = make();
  ASSERT_TRUE(defaults.set(UsageConsent::shareKey, true));
  DefaultsStore fixed{defaults.path(), DefaultsStore::Access::readOnly};
  Usage bound{{.info = {.slug = "spacemint", .usageHost = server.address()},
               .defaults = fixed,
               .web = web,
               .today = [this] { return day; },
               .systemVersion = "12.0"}};
  bound.sendIfDue();
  bound.setAllowed(false);
  settle();
  EXPECT_EQ(server.count(path), 0);
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
