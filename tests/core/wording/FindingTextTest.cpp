#include "core/wording/FindingText.h"

#include "core/base/RelativeTime.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

constexpr Bytes GB = 1'000'000'000;

TEST(RelativeTime, speaksInTheLargestUnitThatHasPassed) {
  const Date now = dateFromUnixSeconds(1'700'000'000);
  const std::pair<std::int64_t, const char*> cases[]{{0, "just now"},
                                                     {59, "just now"},
                                                     {-59, "just now"},
                                                     {60, "1 minute ago"},
                                                     {3'599, "59 minutes ago"},
                                                     {86'400, "1 day ago"},
                                                     {6 * 86'400, "6 days ago"},
                                                     {21 * 86'400, "3 weeks ago"},
                                                     {90 * 86'400, "3 months ago"},
                                                     {800 * 86'400, "2 years ago"},
                                                     {-7'200, "in 2 hours"}};
  for (const auto& [seconds, text] : cases) {
    EXPECT_EQ(RelativeTime::string(now - std::chrono::seconds{seconds}, now, "en_US"), text);
  }
  EXPECT_EQ(RelativeTime::age(now, now, "en_US"), "0 seconds ago");
  EXPECT_EQ(RelativeTime::age(now - std::chrono::days{2}, now, "de_DE"), "2 days ago");
  EXPECT_EQ(RelativeTime::age(Date::min(), now, "en_US"), "292,471 years ago");
  using std::chrono::seconds;
  EXPECT_EQ(RelativeTime::span(seconds{7'199}), "the last hour");
  EXPECT_EQ(RelativeTime::span(seconds{7'200}), "the last 2 hours");
  EXPECT_EQ(RelativeTime::span(seconds{172'799}), "the last 47 hours");
  EXPECT_EQ(RelativeTime::span(seconds{172'800}), "the last 2 days");
}

TEST(FindingText, saysHowTheFreeSpaceChanged) {
  EXPECT_EQ(FindingText::freeChange(34 * GB, 32 * GB, "en_US"),
            "Free space dropped by 2 GB, from 34 GB to 32 GB");
  EXPECT_EQ(FindingText::freeChange(GB, GB, "en_US"), "Free space grew by 0 bytes, from 1 GB to 1 GB");
  EXPECT_EQ(FindingText::freeChange(264 * GB, 264 * GB - 61'400, "en_US"), "Free space dropped by 61.4 KB");
}

TEST(FindingText, saysWhatALevelMeans) {
  EXPECT_EQ(FindingText::warning(SpaceLevel::ok, 20), "");
  EXPECT_EQ(FindingText::warning(SpaceLevel::low, 20),
            "You're below your 20 GB warning level. Here's where the space went.");
  EXPECT_EQ(FindingText::warning(SpaceLevel::critical, 20), "Your disk is almost full. Free up space soon.");
}

TEST(FindingText, saysWhenMostOfTheTrashIsHidden) {
  const auto line = [](Bytes hidden) {
    return FindingText::trashLine({.path = "/t", .size = 10 * GB, .hiddenItems = {{"/t/.x", hidden}}},
                                  "en_US");
  };
  EXPECT_EQ(line(5 * GB), "Most of it is hidden (5 GB), so Finder shows the Trash as empty.");
  EXPECT_EQ(line(5 * GB - 1), "It takes space until you empty it.");
}

TEST(FindingText, tellsTheAgeOfBackupsAndWorktreesWhereItIsKnown) {
  const Date now = dateFromUnixSeconds(1'700'000'000);
  const Date before = now - std::chrono::days{100};
  EXPECT_EQ(FindingText::oldBackupLine({.path = "/b", .name = "P", .lastBackup = before}, now, "en_US"),
            "Last backed up 3 months ago. Newer backups aren't affected.");
  EXPECT_EQ(FindingText::oldBackupLine({.path = "/b", .name = "P"}, now, "en_US"),
            "Newer backups aren't affected.");
  EXPECT_EQ(FindingText::oldBackupTitle({.path = "/b", .name = "P", .size = 3 * GB}, "en_US"),
            "3 GB in an old backup of P");
  EXPECT_EQ(FindingText::worktreeLine({.path = "/w", .lastUsed = before}, now, "en_US"), "used 3 months ago");
  EXPECT_EQ(FindingText::worktreeLine({.path = "/w", .isOrphaned = true}, now, "en_US"),
            "Repository is gone");
  EXPECT_EQ(FindingText::worktreeLine({.path = "/w"}, now, "en_US"), "");
}

}  // namespace
}  // namespace spacemint
