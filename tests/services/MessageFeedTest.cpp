#include "AppServices/MessageFeed.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace spacemint {
namespace {

AppMessage message(const std::string& id) {
  return {.id = id, .title = "Title", .body = "Body"};
}

TEST(MessageFeed, isReadAsItIsWritten) {
  const auto feed = MessageFeed::parse(R"({"messages": [
    {"id": "a", "title": "T", "body": "B", "colour": 1,
     "link": {"title": "More", "url": "https://spacemint.example/a"},
     "apps": ["spacemint", "other"], "minVersion": "1.0", "maxVersion": "2.0", "until": "2026-03-01"},
    {"id": "b", "title": "", "body": "", "link": null, "apps": null, "until": null}], "more": {}})");
  ASSERT_TRUE(feed);
  EXPECT_THAT(feed->messages,
              testing::ElementsAre(
                  AppMessage{.id = "a",
                             .title = "T",
                             .body = "B",
                             .link = AppMessage::Link{.title = "More", .url = "https://spacemint.example/a"},
                             .apps = std::vector<std::string>{"spacemint", "other"},
                             .minVersion = "1.0",
                             .maxVersion = "2.0",
                             .until = "2026-03-01"},
                  AppMessage{.id = "b", .title = "", .body = ""}));
}

TEST(MessageFeed, thatIsNotAsDescribedIsNone) {
  for (const char* document : {
           "",
           "null",
           "[]",
           "{}",
           R"({"messages": {}})",
           R"({"messages": ["a"]})",
           R"({"messages": [{"id": "a", "title": "T"}]})",
           R"({"messages": [{"id": 1, "title": "T", "body": "B"}]})",
           R"({"messages": [{"id": "a", "title": "T", "body": "B", "apps": "spacemint"}]})",
           R"({"messages": [{"id": "a", "title": "T", "body": "B", "apps": [1]}]})",
           R"({"messages": [{"id": "a", "title": "T", "body": "B", "until": 20260301}]})",
           R"({"messages": [{"id": "a", "title": "T", "body": "B", "link": {"title": "M"}}]})",
           R"({"messages": [{"id": "a", "title": "T", "body": "B", "link": "https://a.example"}]})",
           R"({"messages": [{"id": "a", "title": "T", "body": "B", "link": {"title": "M", "url": 1}}]})",
           R"({"messages": [{"id": "a", "title": "T", "body": "B"}])",
           "<html><body>Sign in to this network</body></html>",
       }) {
    EXPECT_FALSE(MessageFeed::parse(document)) << document;
  }
  EXPECT_FALSE(MessageFeed::parse(std::string(200'000, '[')));
  EXPECT_FALSE(MessageFeed::parse(R"({"messages": )" + std::string(200'000, '[')));
}

TEST(MessageFeed, linksToOtherThanWebPagesAreLeftOut) {
  for (const std::string url :
       {"mailto:ann@spacemint.example", "file:///etc", "a.html", "javascript:1", ""}) {
    const auto feed = MessageFeed::parse(
        R"({"messages": [{"id": "a", "title": "Title", "body": "Body", "link": {"title": "M", "url": ")" +
        url + R"("}}, {"id": "b", "title": "Title", "body": "Body"}]})");
    ASSERT_TRUE(feed) << url;
    EXPECT_THAT(feed->messages, testing::ElementsAre(message("a"), message("b"))) << url;
  }
}

TEST(MessageFeed, nextIsTheFirstThatFits) {
  struct Case {
    const char* what;
    AppMessage first;
    bool isShown;
  };
  const Case cases[]{
      {"plain", message("a"), true},
      {"dismissed", message("seen"), false},
      {"for us", {.id = "a", .apps = {{"other", "spacemint"}}}, true},
      {"for others", {.id = "a", .apps = {{"other", "Spacemint"}}}, false},
      {"for nobody", {.id = "a", .apps = std::vector<std::string>{}}, false},
      {"from our version", {.id = "a", .minVersion = "1.10"}, true},
      {"from an earlier one", {.id = "a", .minVersion = "1.9"}, true},
      {"from a later one", {.id = "a", .minVersion = "1.11"}, false},
      {"to our version", {.id = "a", .maxVersion = "1.10"}, true},
      {"to a later one", {.id = "a", .maxVersion = "2.0"}, true},
      {"to an earlier one", {.id = "a", .maxVersion = "1.9"}, false},
      {"until today", {.id = "a", .until = "2026-03-01"}, true},
      {"until tomorrow", {.id = "a", .until = "2026-03-02"}, true},
      {"until yesterday", {.id = "a", .until = "2026-02-28"}, false},
  };
  const MessageFeed::Reader reader{
      .slug = "spacemint", .version = "1.10", .today = "2026-03-01", .seen = {"seen"}};
  for (const Case& c : cases) {
    const MessageFeed feed{.messages = {c.first, message("second")}};
    const AppMessage* next = feed.next(reader);
    ASSERT_NE(next, nullptr) << c.what;
    EXPECT_EQ(next->id, c.isShown ? c.first.id : "second") << c.what;
  }
  EXPECT_EQ(MessageFeed{}.next(reader), nullptr);
  EXPECT_EQ(MessageFeed{.messages = {message("seen")}}.next(reader), nullptr);
}

}  // namespace
}  // namespace spacemint
