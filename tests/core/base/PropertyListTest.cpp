#include "core/base/PropertyList.h"

#include <gtest/gtest.h>

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

// The parser recurses into containers: what would exhaust the stack is not given to it.
TEST(PropertyList, isRefusedWhenItNestsTooDeep) {
  const auto nested = [](std::size_t depth) {
    std::string text = "<plist><dict><key>k</key>";
    for (std::size_t i = 0; i < depth; ++i) text += "<array>";
    for (std::size_t i = 0; i < depth; ++i) text += "</array>";
    return text + "</dict></plist>";
  };
  EXPECT_TRUE(parse(nested(maximumContainers - 1)));
  EXPECT_FALSE(parse(nested(maximumContainers)));
  EXPECT_FALSE(parse(nested(1'000'000)));

  // Binary: a dictionary and arrays that each hold the next one. Offsets and references take four bytes.
  const auto word = [](std::size_t number) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
      text += static_cast<char>(number >> static_cast<unsigned>(shift));
    return text;
  };
  const auto binary = [&](std::size_t depth) {
    std::string text = "bplist00";
    std::string offsets;
    const auto add = [&](const std::string& object) {
      offsets += word(text.size());
      text += object;
    };
    add("\xd1" + word(1) + word(2));
    add("Qk");
    for (std::size_t i = 0; i + 1 < depth; ++i) add("\xa1" + word(i + 3));
    add("\xa0");
    const std::size_t table = text.size();
    const std::string zeros(4, '\0');
    return text + offsets + std::string(6, '\0') + "\x04\x04" + zeros + word(depth + 2) + zeros + zeros +
           zeros + word(table);
  };
  EXPECT_TRUE(parse(binary(100)));
  EXPECT_TRUE(parse(binary(maximumContainers - 1)));
  EXPECT_FALSE(parse(binary(maximumContainers)));
}

// An array that holds another one twice, which holds another one twice, and so on, takes 2^n of memory.
TEST(PropertyList, isRefusedWhenItsPartsAreShared) {
  const auto shared = [](std::size_t levels) {
    std::string text = "bplist00";
    std::string offsets;
    const auto add = [&](const std::string& object) {
      offsets += static_cast<char>(text.size());
      text += object;
    };
    add(std::string{"\xd1\x01\x02", 3});
    add("Qk");
    for (std::size_t i = 1; i < levels; ++i) {
      add(std::string{'\xa2'} + std::string(2, static_cast<char>(i + 2)));
    }
    add("\xa0");
    const auto table = static_cast<char>(text.size());
    const std::string zeros(7, '\0');
    return text + offsets + std::string(6, '\0') + "\x01\x01" + zeros + static_cast<char>(levels + 2) +
           zeros + '\0' + zeros + table;
  };
  EXPECT_TRUE(parse(shared(1)));
  EXPECT_FALSE(parse(shared(2)));
  EXPECT_FALSE(parse(shared(50)));
}

}  // namespace
}  // namespace spacemint
