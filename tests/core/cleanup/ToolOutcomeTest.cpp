#include "core/cleanup/ToolOutcome.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

TEST(ToolOutcome, lastLineIsTheLastThatSaysSomething) {
  const std::pair<const char*, const char*> cases[]{
      {"", "Unknown error"},         {"\n \n\t\n", "Unknown error"},       {"one", "one"},
      {"one\ntwo\n", "two"},         {"\n\n last line \t\n", "last line"}, {"one\n \n\n", "one"},
      {"fatal: no\r\n", "fatal: no"}};
  for (const auto& [text, line] : cases) EXPECT_EQ(lastLine(text), line) << text;
}

TEST(ToolOutcome, tellsWhyAToolFailed) {
  const auto other = [](const char* message) { return std::optional{CleanupFailure::other(message)}; };
  EXPECT_EQ(toolFailure({.tool = "/usr/bin/git"}), other("couldn't find `git`."));
  EXPECT_EQ(toolFailure({.tool = "npm", .started = true, .timedOut = true, .status = 143}),
            other("`npm` took too long and was stopped."));
  EXPECT_EQ(toolFailure({.tool = "npm", .started = true, .output = "x", .error = "y"}), std::nullopt);
  EXPECT_EQ(toolFailure({.tool = "npm", .started = true, .status = 1, .output = "x", .error = "y\nz\n"}),
            other("z"));
  EXPECT_EQ(toolFailure({.tool = "npm", .started = true, .status = 1, .output = "x"}), other("x"));
  EXPECT_EQ(toolFailure({.tool = "npm", .started = true, .status = 1}), other("Unknown error"));
}

}  // namespace
}  // namespace spacemint
