#include "core/base/DebianVersion.h"

#include "support/Files.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <sstream>

namespace spacemint {
namespace {

const char* sign(std::weak_ordering order) {
  return order < 0 ? "lt" : order > 0 ? "gt" : "eq";
}

TEST(DebianVersion, ordersAsThePolicySays) {
  struct Case {
    const char* a;
    const char* order;
    const char* b;
  };
  const Case cases[]{{"9.0~rc1", "lt", "9.0"},       {"1.0~~", "lt", "1.0~~a"},
                     {"1.0~~a", "lt", "1.0~"},       {"1.0~", "lt", "1.0"},
                     {"1.0", "lt", "1.0a"},          {"1.0a", "lt", "1.0+"},
                     {"1.2", "lt", "1.10"},          {"1.0", "eq", "1.00"},
                     {"2.0", "lt", "1:1.0"},         {"0:1", "eq", "1"},
                     {"1.0", "lt", "1.0-1"},         {"1.0-0", "eq", "1.0"},
                     {"1.0-1", "lt", "1.0-1.1"},     {"", "lt", "0a"},
                     {"0.1.0~deb12", "lt", "0.1.0"}, {"99999999999999999999", "lt", "100000000000000000000"}};
  for (const Case& c : cases) {
    EXPECT_STREQ(sign(debianVersionOrder(c.a, c.b)), c.order) << c.a << ' ' << c.b;
    EXPECT_EQ(debianVersionOrder(c.b, c.a), 0 <=> debianVersionOrder(c.a, c.b)) << c.b << ' ' << c.a;
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

}  // namespace
}  // namespace spacemint
