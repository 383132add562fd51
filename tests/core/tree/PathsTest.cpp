#include "core/tree/Paths.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

TEST(Paths, translateBetweenTheStoredAndTheShownForm) {
  EXPECT_EQ(Paths::join("/", "Users"), "/Users");
  EXPECT_EQ(Paths::join("/Users/", "ann"), "/Users/ann");
  EXPECT_EQ(Paths::join("/Users", "ann"), "/Users/ann");

  EXPECT_EQ(Paths::logical("/System/Volumes/Data"), "/");
  EXPECT_EQ(Paths::logical("/System/Volumes/Data/Users/ann"), "/Users/ann");
  EXPECT_EQ(Paths::logical("/home/ann"), "/home/ann");

  const char* home = "/Users/ann";
  EXPECT_EQ(Paths::display("/System/Volumes/Data/Users/ann/Downloads", home), "~/Downloads");
  EXPECT_EQ(Paths::display("/Users/ann", home), "~");
  EXPECT_EQ(Paths::display("/Users/annex", home), "/Users/annex");
  EXPECT_EQ(Paths::display("/Users/ren\u00e9/x", "/Users/rene\u0301"), "~/x");
  EXPECT_EQ(Paths::display("/etc", "/"), "~/etc");

  EXPECT_EQ(Paths::lastComponent("/a/b/"), "b");
  EXPECT_EQ(Paths::lastComponent("/"), "/");
}

}  // namespace
}  // namespace spacemint
