#include "core/analysis/DeviceBackups.h"

#include "core/base/PropertyList.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"
#include "support/TreeBuilder.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <vector>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::file;
using support::folder;

constexpr Bytes gigabyte = 1'000'000'000;
constexpr Date backedUp = dateFromUnixSeconds(1'772'368'200);  // 2026-03-01T12:30:00Z

// A home with one backup, whose Info.plist a test may write.
class DeviceBackupsTest : public testing::Test {
 protected:
  DeviceBackupsTest() { fs::create_directories(backup()); }

  std::string backup() const { return home / (std::string{DeviceBackups::relativePath} + "/00008110"); }
  std::string info() const { return backup() + "/Info.plist"; }

  Snapshot scan() const {
    const Node backups =
        folder("Backup", {folder("00008110", {file("a", 5 * gigabyte)}),
                          folder("unreadable", {file("a", 12 * gigabyte)}), file("stray", 7)});
    return {.root = folder(
                home.path(),
                {folder("Library", {folder("Application Support", {folder("MobileSync", {backups})})})})};
  }

  support::TemporaryFolder home;
};

TEST_F(DeviceBackupsTest, areListedLargestFirstWithWhatTheySayOfThemselves) {
  std::ofstream(info()) << R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>
<key>Display Name</key><string>Ann&apos;s iPad</string><key>Product Name</key><string>iPad Air</string>
<key>Last Backup Date</key><date>2026-03-01T12:30:00Z</date></dict></plist>)";
  const auto found = DeviceBackups::find({.in = scan(), .home = home.path()});
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].name, "Unknown device");
  EXPECT_EQ(found[0].model, std::nullopt);
  EXPECT_EQ(found[0].size, 12 * gigabyte);
  EXPECT_EQ(found[1], (DeviceBackup{backup(), "Ann's iPad", "iPad Air", backedUp, 5 * gigabyte}));
  EXPECT_TRUE(DeviceBackups::find({.in = scan(), .home = "/elsewhere"}).empty());
}

TEST_F(DeviceBackupsTest, takeEachFactOnlyInItsOwnType) {
  const auto withInfo = [&](PropertyDictionary dictionary) {
    return DeviceBackups::find({.in = scan(),
                                .home = home.path(),
                                .readInfo = [&](const std::string&) { return std::optional{dictionary}; }})
        .front();
  };
  const auto named =
      withInfo({{"Device Name", std::string{"Phone"}}, {"Display Name", std::string{"Other"}}});
  EXPECT_EQ(named.name, "Phone");
  const auto odd = withInfo({{"Device Name", std::int64_t{7}},
                             {"Display Name", std::string{"Other"}},
                             {"Product Name", true},
                             {"Last Backup Date", std::string{"2020-01-01"}}});
  EXPECT_EQ(odd.name, "Other");
  EXPECT_EQ(odd.model, std::nullopt);
  EXPECT_EQ(odd.lastBackup, std::nullopt);
  EXPECT_FALSE(odd.isOld(backedUp, 90));
}

TEST_F(DeviceBackupsTest, areOldAfterTheDaysAndNotOnTheDay) {
  const DeviceBackup backup{.path = "/b", .name = "Phone", .lastBackup = backedUp};
  EXPECT_FALSE(backup.isOld(backedUp + std::chrono::days{90}, 90));
  EXPECT_TRUE(backup.isOld(backedUp + std::chrono::days{90} + std::chrono::microseconds{1}, 90));
}

TEST_F(DeviceBackupsTest, areNotReadWhereTheFileIsNoPlainOne) {
  ASSERT_EQ(mkfifo(info().c_str(), 0600), 0);
  EXPECT_FALSE(DeviceBackups::readInfo(backup()));  // and does not wait for a writer
  fs::remove(info());
  fs::create_symlink("Info.plist", info());
  EXPECT_FALSE(DeviceBackups::readInfo(backup()));
  fs::remove(info());
  std::ofstream(info()) << "<plist><dict></dict></plist>";
  EXPECT_TRUE(DeviceBackups::readInfo(backup()));
  fs::resize_file(info(), DeviceBackups::infoLimit + 1);
  EXPECT_FALSE(DeviceBackups::readInfo(backup()));
}

// The same dictionary in both formats.
const std::string binary = support::readText(SPACEMINT_FUZZ_CORPUS "/propertylist/binary");
const std::string xml = support::readText(SPACEMINT_FUZZ_CORPUS "/propertylist/xml");

std::optional<PropertyDictionary> parse(std::string_view document) {
  constexpr const char* keys[] = {"Apps",         "Count", "Device Name", "Display Name", "Last Backup Date",
                                  "Product Name", "Ratio", "Umlaut",      "Whole",        "Missing"};
  return parsePropertyList(document, keys);
}

std::string word(std::uint32_t number) {
  std::string text;
  for (unsigned shift = 32; shift > 0; shift -= 8) text += static_cast<char>(number >> (shift - 8));
  return text;
}

TEST(PropertyList, isReadInBothFormats) {
  const PropertyDictionary expected{{"Apps", {}},
                                    {"Count", std::int64_t{-3}},
                                    {"Device Name", std::string{"Ann's iPhone"}},
                                    {"Display Name", std::string{"Other"}},
                                    {"Last Backup Date", dateFromUnixSeconds(1'772'368'200)},
                                    {"Product Name", std::string{"iPhone 13 mini"}},
                                    {"Ratio", 0.5},
                                    {"Umlaut", std::string{"Gr\u00f6\u00dfe"}},
                                    {"Whole", true}};
  EXPECT_EQ(parse(xml), expected);
  EXPECT_EQ(parse(binary), expected);
}

TEST(PropertyList, isRefusedWhenItIsNone) {
  for (const char* text :
       {"", "plain text", "<plist><array></array></plist>", "<plist><string>x</string></plist>",
        "<plist><dict><key>a</key></plist>", "<plist>", "<?xml?>", "bplist00"}) {
    EXPECT_EQ(parse(text), std::nullopt) << text;
  }
}

TEST(PropertyList, survivesEveryCutAndEveryChangedByte) {
  for (const std::string& document : {binary, xml}) {
    for (std::size_t i = 0; i < document.size(); ++i) {
      parse(document.substr(0, i));
      for (const char byte : {'\0', '\x7f', '\xff', '<'}) {
        std::string changed = document;
        changed[i] = byte;
        parse(changed);
      }
    }
  }
}

TEST(PropertyList, isReadInUtf16) {
  const PropertyDictionary expected = parse(xml).value();
  for (const bool isBigEndian : {true, false}) {
    for (const bool hasMark : {true, false}) {
      std::string text;
      const auto add = [&](char16_t unit) {
        const char high = static_cast<char>(unit >> 8U);
        const char low = static_cast<char>(unit & 0xffU);
        text += isBigEndian ? high : low;
        text += isBigEndian ? low : high;
      };
      if (hasMark) add(0xfeff);
      std::string document = xml;
      document.replace(document.find("\u00df"), 2, "&#xdf;");
      for (const char c : document) add(static_cast<unsigned char>(c));
      EXPECT_EQ(parse(text), expected) << isBigEndian << hasMark;
    }
  }
}

TEST(PropertyList, isReadAsXmlMayBeWritten) {
  const auto listOf = [](std::string_view inside) {
    return "<plist><dict><key>Count</key>" + std::string{inside} + "</dict></plist>";
  };
  const std::pair<const char*, std::optional<PropertyValue>> cases[]{
      {"<string>a&lt;&gt;&amp;&quot;&apos;&#65;&#x1F33F;</string>", "a<>&\"'A\U0001f33f"},
      {"<string>a<![CDATA[<b>&amp;]]>c<!-- no --></string>", "a<b>&amp;c"},
      {"<string/>", ""},
      {"<string a='>' >x</string >", "x"},
      {"<!-- <integer>1</integer> --><?a b?><integer> 7 </integer>", std::int64_t{7}},
      {"<integer>0x1f</integer>", std::int64_t{31}},
      {"<integer>18446744073709551615</integer>", std::int64_t{-1}},
      {"<real>-1e3</real>", -1'000.0},
      {"<true></true>", true},
      {"<data>AA==</data>", PropertyValue{}},
      {"<array><dict><key>x</key><array/></dict></array>", PropertyValue{}},
      {"<integer>1</integer><key>Count</key><integer>2</integer>", std::int64_t{1}},
      {"<integer>1x</integer>", {}},
      {"<date>2026-02-30T00:00:00Z</date>", {}},
      {"<date>2026-03-01 00:00:00Z</date>", {}},
      {"<string>&unknown;</string>", {}},
      {"<string>&#xd800;</string>", {}},
      {"<string>&#0;</string>", {}},
      {"<string>a<b/></string>", {}},
      {"<string>a</integer>", {}},
      {"<array><dict></array></dict>", {}},
      {"text<true/>", {}},
      {"<true/><true/>", {}},
      {"", {}},
  };
  for (const auto& [inside, value] : cases) {
    const auto read = parse(listOf(inside));
    ASSERT_EQ(read.has_value(), value.has_value()) << inside;
    if (read) {
      EXPECT_EQ(read->at("Count"), *value) << inside;
    }
  }
  const std::string bomb = "<!DOCTYPE plist [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">]>";
  EXPECT_FALSE(parse(bomb + listOf("<string>&b;</string>"))) << "its own entities are not known";
  EXPECT_TRUE(parse(bomb + listOf("<string>b</string>")));
  EXPECT_TRUE(parse("<plist><dict/></plist>")->empty());
  EXPECT_FALSE(parse("<plist><dict/></plist><plist/>"));
}

// A dictionary with the keys a and b, and the objects behind it; offsets and references take four bytes.
std::string binaryList(std::uint32_t valueOfA, std::uint32_t valueOfB, const std::vector<std::string>& more) {
  std::string text = "bplist00";
  std::string offsets;
  const auto add = [&](const std::string& object) {
    offsets += word(static_cast<std::uint32_t>(text.size()));
    text += object;
  };
  add("\xd2" + word(1) + word(2) + word(valueOfA) + word(valueOfB));
  add("UCount");
  add("URatio");
  for (const std::string& object : more) add(object);
  const auto table = static_cast<std::uint32_t>(text.size());
  const auto objects = static_cast<std::uint32_t>(3 + more.size());
  return text + offsets + std::string(6, '\0') + "\x04\x04" + word(0) + word(objects) + word(0) + word(0) +
         word(0) + word(table);
}

TEST(PropertyList, isReadWhateverItsPartsHold) {
  EXPECT_EQ(parse(binaryList(3, 3, {std::string{"\xa0"}})),
            (PropertyDictionary{{"Count", {}}, {"Ratio", {}}}))
      << "an array that two keys share";
  EXPECT_TRUE(parse(binaryList(0, 3, {"\xa1" + word(3)}))) << "parts that hold themselves";
  EXPECT_EQ(parse(binaryList(3, 4, {std::string{"\x10\xff"}, "\x22" + std::string{"\x3f\x80\0\0", 4}})),
            (PropertyDictionary{{"Count", std::int64_t{255}}, {"Ratio", 1.0}}));
  EXPECT_FALSE(parse(binaryList(3, 5, {"\x08", "\x09"}))) << "there is no such object";
  EXPECT_FALSE(parse(binaryList(3, 4, {"\x08", "\x5f\x13" + std::string(8, '\xff')})))
      << "longer than any text";
  std::string arrays;
  for (int i = 0; i < 1'000'000; ++i) arrays += "<array>";
  for (int i = 0; i < 1'000'000; ++i) arrays += "</array>";
  EXPECT_TRUE(parse("<plist><dict><key>k</key>" + arrays + "</dict></plist>"));
}

}  // namespace
}  // namespace spacemint
