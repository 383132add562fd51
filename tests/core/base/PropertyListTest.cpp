#include "core/base/PropertyList.h"

#include <gtest/gtest.h>

#include <vector>

namespace spacemint {
namespace {

constexpr std::string_view binaryInHex =
    "62706c6973743030d90102030405060708090a0f10111213141516544170707355436f756e745b446576696365204e61"
    "6d655c446973706c6179204e616d655f10104c617374204261636b757020446174655c50726f64756374204e616d6555"
    "526174696f56556d6c6175745557686f6c65a20b0c5161d10d0e5162100113fffffffffffffffd5c416e6e2773206950"
    "686f6e65554f746865723341c7aa34640000005e6950686f6e65203133206d696e69233fe00000000000006500470072"
    "00f600df006509081b2026323f525f656c7275777a7c7e87949aa3b2bbc6000000000000010100000000000000170000"
    "00000000000000000000000000c7";

constexpr const char* xml = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict>
<key>Apps</key><array><string>a</string><dict><key>b</key><integer>1</integer></dict></array>
<key>Count</key><integer>-3</integer>
<key>Device Name</key><string>Ann's iPhone</string>
<key>Display Name</key><string>Other</string>
<key>Last Backup Date</key><date>2026-03-01T12:30:00Z</date>
<key>Product Name</key><string>iPhone 13 mini</string>
<key>Ratio</key><real>0.5</real>
<key>Umlaut</key><string>Gr&#246;ße</string>
<key>Whole</key><true/>
</dict></plist>)";

std::optional<PropertyDictionary> parse(std::string_view document) {
  constexpr const char* keys[] = {"Apps",         "Count", "Device Name", "Display Name", "Last Backup Date",
                                  "Product Name", "Ratio", "Umlaut",      "Whole",        "Missing"};
  return parsePropertyList(document, keys);
}

std::string bytes(std::string_view hex) {
  std::string result;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    result += static_cast<char>(std::stoi(std::string{hex.substr(i, 2)}, nullptr, 16));
  }
  return result;
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
  EXPECT_EQ(parse(bytes(binaryInHex)), expected);
}

TEST(PropertyList, isRefusedWhenItIsNone) {
  for (const char* text :
       {"", "plain text", "<plist><array></array></plist>", "<plist><string>x</string></plist>",
        "<plist><dict><key>a</key></plist>", "<plist>", "<?xml?>", "bplist00"}) {
    EXPECT_EQ(parse(text), std::nullopt) << text;
  }
}

TEST(PropertyList, survivesEveryCutAndEveryChangedByte) {
  for (const std::string& document : {bytes(binaryInHex), std::string{xml}}) {
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
      std::string document{xml};
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
  struct Case {
    const char* inside;
    std::optional<PropertyValue> value;
  };
  const Case cases[]{
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
  for (const Case& c : cases) {
    const auto read = parse(listOf(c.inside));
    ASSERT_EQ(read.has_value(), c.value.has_value()) << c.inside;
    if (read) {
      EXPECT_EQ(read->at("Count"), *c.value) << c.inside;
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
