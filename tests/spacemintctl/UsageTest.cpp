// The consent to usage reports from the command line, over the keys that the application reads.

#include "AppServices/consent/UsageConsent.h"
#include "support/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace spacemint {
namespace {

using support::Program;
using testing::HasSubstr;

TEST(UsageCommand, showsAndChangesTheConsent) {
  const Program program{SPACEMINTCTL};
  const auto store = [&] {
    return DefaultsStore{program.home() / ".config/spacemint/app.spacemint.Spacemint.json"};
  };
  EXPECT_EQ(program.run({"usage"}).out, "Not answered yet; nothing is sent.\n");
  EXPECT_EQ(program.run({"usage", "--json"}).out, "{\"allowed\":null,\"sentOn\":null}\n");

  EXPECT_EQ(program.run({"usage", "on"}).exitCode, 0);
  EXPECT_EQ(store().boolean(UsageConsent::shareKey), true);
  EXPECT_THAT(program.run({"usage", "status"}).out, HasSubstr("Last sent: never.\n"));
  store().set(UsageConsent::installKey, "ID");
  store().set(UsageConsent::sentOnKey, "2026-03-01");
  EXPECT_THAT(program.run({"usage"}).out, HasSubstr("Last sent: 2026-03-01.\n"));
  EXPECT_EQ(program.run({"usage", "status", "--json"}).out, "{\"allowed\":true,\"sentOn\":\"2026-03-01\"}\n");

  EXPECT_EQ(program.run({"usage", "off"}).exitCode, 0);
  EXPECT_EQ(store().boolean(UsageConsent::shareKey), false);
  EXPECT_FALSE(store().has(UsageConsent::installKey));
  EXPECT_FALSE(store().has(UsageConsent::sentOnKey));
  EXPECT_EQ(program.run({"usage"}).out, "Off: nothing is sent.\n");
  EXPECT_EQ(program.run({"usage", "perhaps"}).exitCode, 2);
}

TEST(UsageCommand, saysWhyItCannotChangeTheConsent) {
  const Program program{SPACEMINTCTL};
  std::filesystem::create_directories(program.home() / ".config/spacemint/app.spacemint.Spacemint.json");
  const auto outcome = program.run({"usage", "off"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.err, HasSubstr("app.spacemint.Spacemint.json"));
}

}  // namespace
}  // namespace spacemint
