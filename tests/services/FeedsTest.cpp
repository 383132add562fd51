#include "AppServices/MessageFeed.h"
#include "AppServices/UpdateChoice.h"

#include <gmock/gmock.h>

#include <tuple>

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
  const std::tuple<const char*, AppMessage, bool> cases[]{
      {"plain", message("a"), true},
      {"dismissed", message("seen"), false},
      {"for us", AppMessage{.id = "a", .apps = {{"other", "spacemint"}}}, true},
      {"for others", AppMessage{.id = "a", .apps = {{"other", "Spacemint"}}}, false},
      {"for nobody", AppMessage{.id = "a", .apps = std::vector<std::string>{}}, false},
      {"from our version", AppMessage{.id = "a", .minVersion = "1.10"}, true},
      {"from an earlier one", AppMessage{.id = "a", .minVersion = "1.9"}, true},
      {"from a later one", AppMessage{.id = "a", .minVersion = "1.11"}, false},
      {"to our version", AppMessage{.id = "a", .maxVersion = "1.10"}, true},
      {"to a later one", AppMessage{.id = "a", .maxVersion = "2.0"}, true},
      {"to an earlier one", AppMessage{.id = "a", .maxVersion = "1.9"}, false},
      {"until today", AppMessage{.id = "a", .until = "2026-03-01"}, true},
      {"until tomorrow", AppMessage{.id = "a", .until = "2026-03-02"}, true},
      {"until yesterday", AppMessage{.id = "a", .until = "2026-02-28"}, false},
  };
  const MessageFeed::Reader reader{
      .slug = "spacemint", .version = "1.10", .today = "2026-03-01", .seen = {"seen"}};
  for (const auto& [what, first, isShown] : cases) {
    const MessageFeed feed{.messages = {first, message("second")}};
    const AppMessage* next = feed.next(reader);
    ASSERT_NE(next, nullptr) << what;
    EXPECT_EQ(next->id, isShown ? first.id : "second") << what;
  }
  EXPECT_EQ(MessageFeed{}.next(reader), nullptr);
  EXPECT_EQ(MessageFeed{.messages = {message("seen")}}.next(reader), nullptr);
}

const std::string start =
    R"(<?xml version="1.0" encoding="utf-8"?>)"
    R"(<rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle"><channel>)";
const std::string end = "</channel></rss>";

TEST(UpdateFeed, isReadAsItIsWritten) {
  const auto items = parseUpdateFeed(
      start +
      R"(<title>Spacemint</title><item><title>2.0</title><description><![CDATA[<b>New</b>]]></description>)"
      R"(<enclosure url="https://a.example/f.deb" sparkle:version="2.0" sparkle:shortVersionString="2" )"
      R"(sparkle:minimumSystemVersion="6.1" length="12" type="x" sparkle:edSignature="c2ln"/></item>)"
      R"(<item><title>Without a file</title></item>)"
      R"(<item><x><enclosure url="deeper"/></x><enclosure url="other"/></item>)"
      R"(<enclosure url="outside"/>)" +
      end);
  ASSERT_TRUE(items);
  EXPECT_THAT(*items, testing::ElementsAre(UpdateItem{.version = "2.0",
                                                      .shortVersion = "2",
                                                      .minimumSystemVersion = "6.1",
                                                      .url = "https://a.example/f.deb",
                                                      .length = "12",
                                                      .signature = "c2ln"},
                                           UpdateItem{.url = "other"}));
  EXPECT_THAT(parseUpdateFeed(start + end), testing::Optional(testing::IsEmpty()));
}

TEST(UpdateFeed, thatIsNotAsDescribedIsNone) {
  std::string bomb = R"(<?xml version="1.0"?><!DOCTYPE rss [<!ENTITY a "aaaaaaaaaa">)";
  for (char name = 'b'; name < 'k'; ++name) {
    bomb += std::string{"<!ENTITY "} + name + " \"";
    for (int i = 0; i < 10; ++i) bomb += std::string{"&"} + static_cast<char>(name - 1) + ";";
    bomb += "\">";
  }
  std::string deep;
  for (int i = 0; i < 40; ++i) deep += "<a>";
  const std::string documents[]{
      "",
      "{}",
      "<html></html>",
      "<channel><item/></channel>",
      start,
      start + "<item></channel></rss>",
      start + "&unknown;" + end,
      bomb + "]><rss><channel><title>&j;</title></channel></rss>",
      R"(<!DOCTYPE rss [<!ENTITY f SYSTEM "file:///etc/passwd">]><rss><channel>&f;</channel></rss>)",
      R"(<!DOCTYPE rss SYSTEM "https://a.example/rss.dtd"><rss><channel/></rss>)",
      start + deep,
      start + std::string(largestUpdateFeed, ' ') + end,
      start + std::string(50'000'000, ' ') + end,
  };
  for (const std::string& document : documents) {
    EXPECT_FALSE(parseUpdateFeed(document)) << document.substr(0, 200);
  }
}

const std::string signature(86, 'A');

UpdateItem item(const std::string& version, const std::string& name) {
  return {.version = version,
          .url = "https://a.example/pool/" + name,
          .length = "1000",
          .signature = signature + "=="};
}

UpdateItem good(const std::string& version) {
  return item(version, "spacemint_" + version + "_amd64.deb");
}

const UpdateTarget target{
    .version = "1.9", .package = "spacemint", .system = {.kernel = "6.1", .architecture = "amd64"}};

TEST(UpdateChoice, takesTheNewestThatFits) {
  UpdateItem tooNew = good("3.0");
  tooNew.minimumSystemVersion = "6.2";
  UpdateItem fitting = good("2.0");
  fitting.minimumSystemVersion = "6.1";
  fitting.shortVersion = "2";
  const std::tuple<const char*, std::vector<UpdateItem>, std::optional<std::string>> cases[]{
      {"nothing", {}, std::nullopt},
      {"the same", {good("1.9")}, std::nullopt},
      {"older", {good("1.8"), good("1.0.10")}, std::nullopt},
      {"what came before the same", {good("1.9~rc1")}, std::nullopt},
      {"newer by number", {good("1.10")}, "1.10"},
      {"the newest of all", {good("1.10"), good("1.11"), good("1.9.1")}, "1.11"},
      {"the newest for the system", {tooNew, fitting}, "2.0"},
      {"that of this machine", {item("2.0", "spacemint_2.0_arm64.deb"), good("2.0")}, "2.0"},
      {"that of another machine", {item("2.0", "spacemint_2.0_arm64.deb")}, std::nullopt},
      {"that of all machines", {item("2.0", "spacemint_2.0_all.deb")}, "2.0"},
      {"a revision", {item("2.0", "spacemint_2.0-1~deb12+1_amd64.deb")}, "2.0"},
      {"without a version", {item("", "spacemint__amd64.deb")}, std::nullopt},
  };
  for (const auto& [what, items, version] : cases) {
    const auto update = newestUpdate(items, target);
    ASSERT_TRUE(update) << what;
    EXPECT_EQ(*update ? std::optional{(*update)->version} : std::nullopt, version) << what;
  }
  const auto update = newestUpdate({fitting}, target);
  EXPECT_EQ((*update)->shownVersion, "2");
  EXPECT_EQ((*update)->fileName, "spacemint_2.0_amd64.deb");
  EXPECT_EQ((*update)->length, 1000);
}

TEST(UpdateChoice, refusesWhatCannotBe) {
  const auto with = [](auto change) {
    UpdateItem item = good("2.0");
    change(item);
    return item;
  };
  const std::pair<const char*, UpdateItem> cases[]{
      {"another product", item("2.0", "othermint_2.0_amd64.deb")},
      {"a longer name", item("2.0", "spacemint-tools_2.0_amd64.deb")},
      {"another version", item("2.0", "spacemint_2.1_amd64.deb")},
      {"a longer version", item("2.0", "spacemint_2.0.1_amd64.deb")},
      {"another kind of file", item("2.0", "spacemint_2.0_amd64.sh")},
      {"no machine", item("2.0", "spacemint_2.0.deb")},
      {"a name that is cut", item("2.0", "spacemint_2.0")},
      {"a folder in the name", item("2.0", "spacemint_2.0_..%2F..%2Fevil.deb")},
      {"a query behind", item("2.0", "evil.sh?spacemint_2.0_amd64.deb")},
      {"a folder in the version", item("2.0/../../x", "spacemint_2.0/../../x_amd64.deb")},
      {"a version of another kind", item("2 0", "spacemint_2 0_amd64.deb")},
      {"an endless version", good("2." + std::string(100, '0'))},
      {"no signature", with([](UpdateItem& i) { i.signature.clear(); })},
      {"a short signature", with([](UpdateItem& i) { i.signature = "AAAA"; })},
      {"a signature that is none", with([](UpdateItem& i) { i.signature = std::string(88, '*'); })},
      {"no length", with([](UpdateItem& i) { i.length.clear(); })},
      {"a length of nothing", with([](UpdateItem& i) { i.length = "0"; })},
      {"a negative length", with([](UpdateItem& i) { i.length = "-5"; })},
      {"a length in words", with([](UpdateItem& i) { i.length = "1000 bytes"; })},
      {"too long", with([](UpdateItem& i) { i.length = "200000001"; })},
      {"beyond all numbers", with([](UpdateItem& i) { i.length = "99999999999999999999"; })},
      {"in the clear", with([](UpdateItem& i) { i.url = "http://a.example/spacemint_2.0_amd64.deb"; })},
      {"a file of this machine", with([](UpdateItem& i) { i.url = "file:///spacemint_2.0_amd64.deb"; })},
      {"no address", with([](UpdateItem& i) { i.url.clear(); })},
  };
  for (const auto& [what, item] : cases) {
    const auto update = newestUpdate({item, good("1.10")}, target);
    ASSERT_FALSE(update) << what;
    EXPECT_EQ(update.error(), UpdateProblem::feedRefused) << what;
  }
}

}  // namespace
}  // namespace spacemint
