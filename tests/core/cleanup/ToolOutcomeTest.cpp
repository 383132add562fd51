#include "core/cleanup/ToolOutcome.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

TEST(ToolOutcome, tellsWhyAToolFailed) {
  const auto other = [](const char* message) { return std::optional{CleanupFailure::other(message)}; };
  EXPECT_EQ(toolFailure("/usr/bin/git", std::nullopt), other("couldn't find `git`."));
  EXPECT_EQ(toolFailure("npm", {{.status = 143, .timedOut = true}}),
            other("`npm` took too long and was stopped."));
  EXPECT_EQ(toolFailure("npm", {{.output = "x", .error = "y"}}), std::nullopt);
  EXPECT_EQ(toolFailure("npm", {{.status = 1, .output = "x", .error = "y\nz\n"}}), other("z"));
  EXPECT_EQ(toolFailure("npm", {{.status = 1, .output = "x"}}), other("x"));
  EXPECT_EQ(toolFailure("npm", {{.status = 1}}), other("Unknown error"));
}

}  // namespace
}  // namespace spacemint
