#include "core/cleanup/CleanupText.h"

#include "core/base/RelativeTime.h"
#include "core/cleanup/ToolOutcome.h"
#include "core/wording/FindingText.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace spacemint {
namespace {

constexpr Bytes MB = 1'000'000;
constexpr Bytes GB = 1'000 * MB;

TEST(CleanupText, saysWhatCameFreeAndWhatDidNot) {
  const auto said = [](CleanupText::Success success) {
    success.label = "Cleaned it";
    return CleanupText::successText(success, "en_US");
  };
  EXPECT_EQ(said({.freed = 50'000'001}), "Cleaned it and freed 50 MB.");
  EXPECT_EQ(said({.freed = 50 * MB}), "Cleaned it.");
  EXPECT_EQ(said({.freed = -5 * GB, .estimate = 3 * GB}),
            "Cleaned it, about 3 GB. It can take a moment to show as free.");
  EXPECT_EQ(said({.estimate = 0}), "Cleaned it.");
  EXPECT_EQ(said({.removed = {9, GB}, .freed = 950 * MB}), "Cleaned it and freed 950 MB.");
  EXPECT_EQ(
      said({.removed = {9, GB}, .freed = 0}),
      "Cleaned it and freed 0 bytes. What was removed took up 1 GB; open programs, snapshots, hard links or "
      "copies may still hold the rest.");
  EXPECT_EQ(said({.removed = {9, GB}, .freed = 2 * GB}),
            "Cleaned it and freed 2 GB. What was removed took up 1 GB; other programs freed space too.");
}

TEST(CleanupText, saysWhyItFailedAndWhatIsGoneAlready) {
  const CleanupContext context{.guard = DeletionGuard{"/home/ann"}, .locale = "en_US"};
  const auto said = [&](const CleanupFailure& failure, Removed removed = {},
                        CleanupStep::Kind kind = CleanupStep::Kind::deleteItem) {
    const CleanupStep step{.kind = kind, .path = "/home/ann/x", .size = 5 * MB};
    return CleanupText::failureText(step, {failure, removed}, context);
  };
  const auto refused = CleanupFailure::refused("~/x is a symbolic link", "/home/ann/x");
  const CleanupFailure closed{CleanupFailure::Kind::needsFullDiskAccess, "~/x/y belongs to root"};
  EXPECT_EQ(said(refused), "Spacemint didn't delete anything: ~/x is a symbolic link.");
  EXPECT_EQ(said(refused, {}, CleanupStep::Kind::moveToTrash),
            "Spacemint won't move ~/x: it is a symbolic link.");
  EXPECT_EQ(said(closed, {}, CleanupStep::Kind::moveToTrash),
            "Couldn't move “x” to the Trash: ~/x/y belongs to root");
  EXPECT_EQ(said(closed), "That didn't work: ~/x/y belongs to root");
  EXPECT_EQ(said(closed, {1, MB}), "That didn't work: ~/x/y belongs to root. 1 item (1 MB) is gone already.");
  EXPECT_EQ(said(CleanupFailure::stopped(), {1'200, 2 * MB}),
            "Stopped. 1,200 items (2 MB) are gone already. About 3 MB are left.");
}

TEST(CleanupFailure, knowsAMissingRight) {
  const auto error = [](std::string_view domain, int code) {
    return Error{.domain = std::string{domain}, .code = code};
  };
  const auto caused = [](Error cause) {
    return Error{.domain = "any", .code = 13, .underlying = std::make_shared<Error>(std::move(cause))};
  };
  const auto manager = Cleanup::fileManagerErrorDomain;
  const std::pair<Error, bool> cases[]{{error(Error::system, EPERM), true},
                                       {error(Error::system, EACCES), true},
                                       {error(Error::system, EBUSY), false},
                                       {error(manager, 257), true},
                                       {error(manager, 513), true},
                                       {error(manager, EACCES), false},
                                       {error("any", EACCES), false},
                                       {caused(error(Error::system, EACCES)), true},
                                       {caused(caused(error(manager, 513))), true},
                                       {caused(caused(error("any", 1))), false}};
  for (const auto& [problem, isPermission] : cases)
    EXPECT_EQ(Cleanup::isPermissionError(problem), isPermission);
}

TEST(ToolOutcome, findsTheReasonInWhatAToolSaid) {
  const auto other = [](const char* message) { return std::optional{CleanupFailure::other(message)}; };
  EXPECT_EQ(toolFailure("/usr/bin/git", std::nullopt), other("couldn't find `git`."));
  EXPECT_EQ(toolFailure("npm", {{.status = 143, .timedOut = true}}),
            other("`npm` took too long and was stopped."));
  EXPECT_EQ(toolFailure("npm", {{.output = "x", .error = "y"}}), std::nullopt);
  EXPECT_EQ(toolFailure("npm", {{.status = 1, .output = "x"}}), other("x"));
  const std::pair<const char*, const char*> cases[]{
      {"y\nz\n", "z"},
      {"", "Unknown error"},
      {"npm error code EACCES\nnpm error syscall mkdir\nnpm error path /root/.npm\nnpm error errno -13\n"
       "npm error Your cache folder contains root-owned files\n"
       "npm error A complete log of this run can be found in: /root/.npm/_logs/x.log\n",
       "Your cache folder contains root-owned files"},
      {"npm ERR! code ENOTFOUND\nnpm ERR! A complete log of this run can be found in:\n", "code ENOTFOUND"},
      {"fatal: cannot remove a locked working tree, lock reason: on a stick\n"
       "use 'remove -f -f' to override or unlock first\n",
       "fatal: cannot remove a locked working tree, lock reason: on a stick"},
      {"Error response from daemon: a prune operation is already running\nSee 'docker system prune "
       "--help'.\n",
       "Error response from daemon: a prune operation is already running"},
  };
  for (const auto& [text, reason] : cases) EXPECT_EQ(toolReason(text), reason);
}

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
  EXPECT_EQ(line(5 * GB), "Most of it is hidden (5 GB), so the file manager shows the Trash as empty.");
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
