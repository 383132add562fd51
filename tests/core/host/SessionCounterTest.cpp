#include "core/host/linux/journal/SessionCounter.h"

#include "core/host/linux/journal/EventClock.h"
#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <set>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::TemporaryFolder;

class SessionCounterTest : public testing::Test {
 protected:
  std::uint64_t begin() {
    const auto first = SessionCounter::begin(folder / "state", [this] { return drawn++; });
    EXPECT_TRUE(first) << first.error().message;
    return first.value_or(0);
  }
  void write(const std::string& text) const { support::writeText(file, text); }
  std::string contents() const { return support::readText(file); }

  TemporaryFolder folder;
  std::string file = folder / "state/journal-session";
  std::uint64_t drawn = 1;
};

TEST_F(SessionCounterTest, countsOnAndOnAndNoSessionGivesAnIdOfAnother) {
  std::uint64_t last = 0;
  for (int session = 1; session <= 5; ++session) {
    EventClock clock{begin()};
    EXPECT_GT(clock.stamp(), last);
    for (int i = 0; i < 10; ++i) {
      const std::uint64_t id = clock.give();
      EXPECT_GT(id, last);
      last = id;
    }
    EXPECT_EQ(contents(), "spacemint journal session 1\n" + std::to_string(session) + "\n");
  }
}

TEST_F(SessionCounterTest, startsAgainWhereTheFileIsMissingOrDamaged) {
  const std::set<std::string> damaged{"",
                                      "rubbish",
                                      "spacemint journal session 1\n",
                                      "spacemint journal session 1\n-4\n",
                                      "spacemint journal session 1\n7",
                                      "spacemint journal session 1\n7 \n",
                                      "spacemint journal session 1\n99999999999999999999\n",
                                      "spacemint journal session 2\n7\n",
                                      std::string(10'000, '7')};
  std::set<std::uint64_t> seen{begin()};
  for (const std::string& text : damaged) {
    write(text);
    EXPECT_TRUE(seen.insert(begin()).second) << text;
    EXPECT_EQ(contents(), "spacemint journal session 1\n1\n") << text;
    EXPECT_TRUE(fs::exists(file + ".damaged"));
  }
  fs::remove(file);
  EXPECT_TRUE(seen.insert(begin()).second);
}

TEST_F(SessionCounterTest, tellsASessionFromTheOneThatABackupMakesItCountAgain) {
  begin();
  const std::string backup = contents();
  const std::uint64_t before = begin();
  write(backup);
  const std::uint64_t after = begin();
  constexpr unsigned low = SessionCounter::randomBits + EventClock::bits;
  EXPECT_EQ(after >> low, before >> low);
  EXPECT_NE(after >> EventClock::bits, before >> EventClock::bits);
}

TEST_F(SessionCounterTest, failsRatherThanCountWithoutKeepingIt) {
  begin();
  fs::permissions(folder / "state", fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                                        fs::perms::others_exec);
  fs::permissions(folder.path(), fs::perms::all);
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::becomeNobody()) return false;
    return !SessionCounter::begin(folder / "state", SessionCounter::drawRandomly);
  }));
  fs::permissions(folder / "state", fs::perms::owner_all);
  write("spacemint journal session 1\n1048575\n");
  EXPECT_FALSE(SessionCounter::begin(folder / "state", SessionCounter::drawRandomly));  // none left
  EXPECT_EQ(contents(), "spacemint journal session 1\n1048575\n");
  fs::remove(file);
  fs::create_directory(file);
  EXPECT_FALSE(SessionCounter::begin(folder / "state", SessionCounter::drawRandomly));
}

TEST(EventClock, givesNoIdTwiceAndNoneOfTheNextSession) {
  EventClock clock{EventClock::count * 3};
  std::uint64_t given = 0;
  while (const std::uint64_t id = clock.give()) {
    EXPECT_EQ(id, EventClock::count * 3 + given);
    ++given;
  }
  EXPECT_EQ(given, EventClock::count - 1);
  EXPECT_EQ(clock.stamp(), EventClock::count * 4 - 1);
}

}  // namespace
}  // namespace spacemint
