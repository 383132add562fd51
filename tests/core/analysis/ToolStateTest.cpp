#include "core/analysis/ToolState.h"

#include <gtest/gtest.h>

namespace spacemint::DevTools {
namespace {

TEST(ToolState, followsFromTheAnswer) {
  using Kind = ToolState<std::string>::Kind;
  const auto parse = [](std::string_view text) { return std::string{text}; };
  const auto state = [&](std::optional<ToolAnswer> answer) { return toolState(answer, parse); };
  EXPECT_EQ(state(std::nullopt).kind, Kind::notInstalled);
  EXPECT_EQ(state(ToolAnswer{.output = "rows"}), (ToolState<std::string>{Kind::ready, "rows", ""}));
  EXPECT_EQ(state(ToolAnswer{.status = 1, .error = "Cannot connect to the Docker daemon"}).kind,
            Kind::notRunning);
  EXPECT_EQ(state(ToolAnswer{.output = "rows", .timedOut = true}).kind, Kind::notRunning);
  EXPECT_EQ(state(ToolAnswer{.status = 1, .error = "warning\npermission denied \t\n\n"}),
            (ToolState<std::string>{Kind::failed, "", "permission denied"}));
}

TEST(ToolState, namesTheLastLineThatSaysSomething) {
  EXPECT_EQ(lastLine("\n\n a word  \n \t\n"), "a word");
  EXPECT_EQ(lastLine(""), "Unknown error");
  EXPECT_EQ(lastLine(" \n"), "Unknown error");
}

}  // namespace
}  // namespace spacemint::DevTools
