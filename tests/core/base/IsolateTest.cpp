#include "core/base/Isolate.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

TEST(Isolate, namesThatRunFromRightToLeftAreSetApart) {
  struct Case {
    const char* name;
    const char* isolated;
  };
  const Case cases[]{
      {"", ""},
      {"letter 2.txt", "letter 2.txt"},
      {"\u5199\u771f.jpg", "\u5199\u771f.jpg"},
      {"\u05e9\u05dc\u05d5\u05dd.txt", "\u2068\u05e9\u05dc\u05d5\u05dd.txt\u2069"},
      {"a \u0639\u0637\u0644\u0629", "\u2068a \u0639\u0637\u0644\u0629\u2069"},
      {"\u0661\u0662", "\u2068\u0661\u0662\u2069"},              // digits only
      {"photo\u202egpj.exe", "\u2068photo\u202egpj.exe\u2069"},  // pretends to be a picture
      {"\U0001e900", "\u2068\U0001e900\u2069"},                  // beyond 16 bits
      {"\xff\xd7", "\xff\xd7"},                                  // not UTF-8
  };
  for (const Case& c : cases) EXPECT_EQ(isolatedName(c.name), c.isolated) << c.name;
}

TEST(Isolate, foldersOfAPathFollowEachOtherFromTheLeft) {
  EXPECT_EQ(isolatedPath("~/letters"), "~/letters");
  EXPECT_EQ(isolatedPath("~/\u05d0/\u05d1/a"), "\u2066~/\u2068\u05d0\u2069/\u2068\u05d1\u2069/a\u2069");
  EXPECT_EQ(isolatedPath("/\u05d0/"), "\u2066/\u2068\u05d0\u2069/\u2069");
}

}  // namespace
}  // namespace spacemint
