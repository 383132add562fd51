#include "core/base/ByteFormat.h"
#include "core/base/CalendarDays.h"
#include "core/base/DebianVersion.h"
#include "core/base/Isolate.h"
#include "core/base/NumericOrder.h"
#include "core/base/Unicode.h"
#include "core/host/UserTimeZone.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <optional>
#include <random>
#include <sstream>
#include <tuple>

namespace spacemint {
namespace {

TEST(ByteFormat, picksTheUnitThatNeverReadsOneThousand) {
  const std::tuple<Bytes, const char*, const char*> cases[]{
      {0, "en_US", "0 bytes"},
      {999, "en_US", "999 bytes"},
      {1'000, "en_US", "1 KB"},
      {1'500, "en_US", "1.5 KB"},
      {999'499, "en_US", "999 KB"},
      {999'500, "en_US", "1 MB"},
      {99'949'999, "en_US", "99.9 MB"},
      {99'950'000, "en_US", "100 MB"},
      {123'456'789, "en_US", "123 MB"},
      {20'000'000'000, "en_US", "20 GB"},
      {1'250'000'000'000, "en_US", "1.2 TB"},
      {std::numeric_limits<std::int64_t>::max(), "en_US", "9,223 PB"},
      {std::numeric_limits<std::int64_t>::min(), "en_US", "-9,223 PB"},
      {-1'500, "en_US", "-1.5 KB"},
      {1'500, "de_DE", "1,5 KB"},
      {std::numeric_limits<std::int64_t>::max(), "de_DE", "9.223 PB"},
      {-1'500, "sv_SE", "\u22121,5 KB"},
      {1'500, "no such locale", "1.5 KB"},
  };
  for (const auto& [bytes, locale, text] : cases)
    EXPECT_EQ(ByteFormat::string(bytes, locale), text) << bytes << ' ' << locale;
}

TEST(Isolate, namesThatRunFromRightToLeftAreSetApart) {
  const std::pair<const char*, const char*> cases[]{
      {"", ""},
      {"letter 2.txt", "letter 2.txt"},
      {"\u5199\u771f.jpg", "\u5199\u771f.jpg"},
      {"\u05e9\u05dc\u05d5\u05dd.txt", "\u2068\u05e9\u05dc\u05d5\u05dd.txt\u2069"},
      {"a \u0639\u0637\u0644\u0629", "\u2068a \u0639\u0637\u0644\u0629\u2069"},
      {"\u0661\u0662", "\u2068\u0661\u0662\u2069"},              // digits only
      {"photo\u202egpj.exe", "photo\ufffdgpj.exe"},              // pretends to be a picture
      {"\u2069\u2066\u05d0", "\u2068\ufffd\ufffd\u05d0\u2069"},  // would end the isolation
      {"\U0001e900", "\u2068\U0001e900\u2069"},                  // beyond 16 bits
      {"\xff\xd7", "\xff\xd7"},                                  // not UTF-8
  };
  for (const auto& [name, isolated] : cases) EXPECT_EQ(isolatedName(name), isolated) << name;
}

TEST(Isolate, foldersOfAPathFollowEachOtherFromTheLeft) {
  EXPECT_EQ(isolatedPath("~/letters"), "~/letters");
  EXPECT_EQ(isolatedPath("~/\u05d0/\u05d1/a"), "\u2066~/\u2068\u05d0\u2069/\u2068\u05d1\u2069/a\u2069");
  EXPECT_EQ(isolatedPath("a/\u202e/\u2069"), "a/\ufffd/\ufffd");
  EXPECT_EQ(isolatedPath("/\u05d0/"), "\u2066/\u2068\u05d0\u2069/\u2069");
}

TEST(NumericOrder, countsDigitsAsNumbers) {
  constexpr auto less = std::weak_ordering::less;
  constexpr auto equal = std::weak_ordering::equivalent;
  const std::tuple<const char*, const char*, std::weak_ordering> cases[]{
      {"1.9", "1.10", less},
      {"2.0", "2.1", less},
      {"2.0", "2.0", equal},
      {"1.2", "1.2.1", less},
      {"9", "10", less},
      {"1.01", "1.1", equal},
      {"1.0", "1.00", equal},
      {"0", "", std::weak_ordering::greater},
      {"", "", equal},
      {"1.0b2", "1.0b10", less},
      {"1.0", "1.0b1", less},  // only longer; a version has no marks for what comes before it
      {"99999999999999999999998", "99999999999999999999999", less},
      {"1.a", "1.\xc3\xa4", less},
  };
  for (const auto& [a, b, order] : cases) {
    EXPECT_EQ(numericOrder(a, b), order) << a << ' ' << b;
    EXPECT_EQ(numericOrder(b, a), 0 <=> order) << b << ' ' << a;
  }
}

TEST(Unicode, equalsUnderCanonicalEquivalence) {
  const std::tuple<const char*, const char*, bool> cases[]{
      {"caf\u00e9", "cafe\u0301", true},         // precomposed and decomposed
      {"\u212b", "\u00c5", true},                // the angstrom sign is an A with a ring
      {"\u212a", "K", true},                     // the Kelvin sign is an ASCII letter
      {"a\u0323\u0307", "a\u0307\u0323", true},  // marks in either order
      {"\ud55c", "\u1112\u1161\u11ab", true},    // Hangul
      {"caf\u00e9", "cafe", false},
      {"\ufb01", "fi", false},  // a ligature is only compatible
      {"A", "a", false},
      {"caf\xe9", "cafe\u0301", false},  // not UTF-8
      {"\xff", "\xfe", false},
      {"\xff", "\xff", true},
      {"", "", true},
  };
  for (const auto& [a, b, equal] : cases) EXPECT_EQ(canonicallyEqual(a, b), equal) << a << " / " << b;
}

TEST(Unicode, findsWhereAPrefixEnds) {
  const std::tuple<const char*, const char*, std::optional<std::size_t>> cases[]{
      {"/home/ann/x", "/home/ann", 9},
      {"/home/ann", "/home/ann/x", std::nullopt},
      {"/caf\u00e9/x", "/cafe\u0301", 6},
      {"/cafe\u0301/x", "/caf\u00e9", 7},
      {"/cafe\u0301/x", "/caf\u00e9/", 8},
      {"/caf\u00e9/x", "/cafe\u0300", std::nullopt},
      {"/caf\xe9/x", "/caf\u00e9", std::nullopt},
      {"", "\u00e9", std::nullopt},
  };
  for (const auto& [text, prefix, length] : cases)
    EXPECT_EQ(canonicalPrefixLength(text, prefix), length) << text;
}

const char* sign(std::weak_ordering order) {
  return order < 0 ? "lt" : order > 0 ? "gt" : "eq";
}

TEST(DebianVersion, ordersAsThePolicySays) {
  const std::tuple<const char*, const char*, const char*> cases[]{
      {"9.0~rc1", "lt", "9.0"},       {"1.0~~", "lt", "1.0~~a"},
      {"1.0~~a", "lt", "1.0~"},       {"1.0~", "lt", "1.0"},
      {"1.0", "lt", "1.0a"},          {"1.0a", "lt", "1.0+"},
      {"1.2", "lt", "1.10"},          {"1.0", "eq", "1.00"},
      {"2.0", "lt", "1:1.0"},         {"0:1", "eq", "1"},
      {"1.0", "lt", "1.0-1"},         {"1.0-0", "eq", "1.0"},
      {"1.0-1", "lt", "1.0-1.1"},     {"", "lt", "0a"},
      {"0.1.0~deb12", "lt", "0.1.0"}, {"99999999999999999999", "lt", "100000000000000000000"}};
  for (const auto& [a, order, b] : cases) {
    EXPECT_STREQ(sign(debianVersionOrder(a, b)), order) << a << ' ' << b;
    EXPECT_EQ(debianVersionOrder(b, a), 0 <=> debianVersionOrder(a, b)) << b << ' ' << a;
  }
}

TEST(DebianVersion, ordersAsDpkgDoes) {
  if (!std::filesystem::exists("/usr/bin/dpkg")) GTEST_SKIP() << "no dpkg here";
  std::mt19937 random{5};
  constexpr std::string_view characters = "01239..~~++aZz-";
  const auto version = [&] {
    std::string text{random() % 4 == 0 ? "1:0" : "0"};
    for (auto length = random() % 6; length > 0; --length) text += characters[random() % characters.size()];
    return text + "0";
  };
  std::string pairs;
  std::string expected;
  for (int i = 0; i < 500; ++i) {
    const std::string a = version();
    const std::string b = version();
    pairs += a + ' ' + b + '\n';
    expected += a + ' ' + sign(debianVersionOrder(a, b)) + ' ' + b + '\n';
  }
  const support::TemporaryFolder folder;
  support::writeText(folder / "pairs", pairs);
  support::writeText(folder / "ask",
                     "while read -r a b; do for o in lt eq gt; do "
                     "dpkg --compare-versions \"$a\" $o \"$b\" && echo \"$a $o $b\"; done; done");
  const std::string command =
      "sh '" + (folder / "ask") + "' < '" + (folder / "pairs") + "' > '" + (folder / "answers") + "'";
  ASSERT_NE(std::system(command.c_str()), -1);
  EXPECT_EQ(support::readText(folder / "answers"), expected);
}

using namespace std::chrono_literals;
using std::chrono::local_days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

TEST(CalendarDays, areThoseOfThePlace) {
  const Date evening = sys_days{2023y / 11 / 10} + 23h + 30min;
  const std::tuple<const char*, Date, std::optional<year_month_day>> cases[]{
      {"UTC", evening, 2023y / 11 / 10},
      {"Europe/Berlin", evening, 2023y / 11 / 11},
      {"Europe/Berlin", sys_days{2023y / 7 / 9} + 22h, 2023y / 7 / 10},  // two hours ahead in summer
      {"Europe/Berlin", sys_days{2023y / 7 / 9} + 22h - 1us, 2023y / 7 / 9},
      {"America/New_York", sys_days{2023y / 11 / 10} + 4h + 59min, 2023y / 11 / 9},
      {"Asia/Kolkata", sys_days{2023y / 11 / 10} + 18h + 30min, 2023y / 11 / 11},
      {"Pacific/Apia", sys_days{2011y / 12 / 30} + 10h, 2011y / 12 / 31},  // where the 30th was left out
      {"UTC", Date{} - 1us, 1969y / 12 / 31},
      {"Nowhere/Land", evening, std::nullopt},
      {"", evening, std::nullopt},
  };
  for (const auto& [zone, date, wantedDay] : cases) {
    const auto day = calendarDay(date, zone);
    EXPECT_EQ(day, wantedDay ? std::optional{local_days{*wantedDay}} : std::nullopt)
        << zone << ' ' << date.time_since_epoch();
    EXPECT_EQ(isKnownTimeZone(zone), wantedDay.has_value());
  }
}

TEST(CalendarDays, areCountedBackAtTheSameClockTime) {
  const std::tuple<const char*, Date, int, std::optional<Date>> cases[]{
      {"UTC", sys_days{2024y / 3 / 14} + 7us, 14, sys_days{2024y / 2 / 29} + 7us},
      {"UTC", sys_days{2024y / 3 / 14}, -1, sys_days{2024y / 3 / 15}},
      {"UTC", Date{} - 1us, 1, Date{} - 24h - 1us},
      // Over the end and the beginning of summer time: a day of 25 hours, and one of 23.
      {"Europe/Berlin", sys_days{2023y / 11 / 5} + 11h, 14, sys_days{2023y / 10 / 22} + 10h},
      {"Europe/Berlin", sys_days{2024y / 4 / 1} + 10h, 1, sys_days{2024y / 3 / 31} + 10h},
      {"Europe/Berlin", sys_days{2024y / 4 / 1} + 10h, 2, sys_days{2024y / 3 / 30} + 11h},
      // 02:30 did not exist on the tenth, and existed twice on the 29th.
      {"America/New_York", sys_days{2024y / 3 / 24} + 6h + 30min, 14, sys_days{2024y / 3 / 10} + 7h + 30min},
      {"Europe/Berlin", sys_days{2023y / 11 / 12} + 1h + 30min, 14, sys_days{2023y / 10 / 29} + 1h + 30min},
      {"Nowhere/Land", sys_days{2024y / 3 / 14}, 14, std::nullopt},
      {"UTC", Date{}, INT_MIN, std::nullopt},
      {"UTC", Date::min(), 1, std::nullopt},
  };
  for (const auto& [zone, date, days, earlier] : cases)
    EXPECT_EQ(daysEarlier(date, days, zone), earlier) << zone << ' ' << date.time_since_epoch();
}

TEST(UserTimeZone, isANameHoweverTheEnvironmentGivesIt) {
  const char* given = std::getenv("TZ");
  const auto before = given != nullptr ? std::optional<std::string>{given} : std::nullopt;
  unsetenv("TZ");
  const std::string machine = userTimeZone();
  EXPECT_TRUE(isKnownTimeZone(machine)) << machine;
  const std::pair<const char*, std::string> cases[]{
      {"Asia/Kolkata", "Asia/Kolkata"},
      {":Asia/Kolkata", "Asia/Kolkata"},
      {"/usr/share/zoneinfo/Asia/Kolkata", "Asia/Kolkata"},
      {":/usr/share/zoneinfo/posix/Asia/Kolkata", "Asia/Kolkata"},
      {"", "UTC"},
      {"CET-1CEST,M3.5.0,M10.5.0", machine},
      {"Nowhere/Land", machine},
  };
  for (const auto& [variable, zone] : cases) {
    setenv("TZ", variable, 1);
    EXPECT_EQ(userTimeZone(), zone) << variable;
  }
  before ? setenv("TZ", before->c_str(), 1) : unsetenv("TZ");
}

}  // namespace
}  // namespace spacemint
