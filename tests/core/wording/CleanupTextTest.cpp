#include "core/wording/CleanupText.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

TEST(CleanupText, saysHowACleanUpEnded) {
  const auto said = [](CleanupText::Outcome outcome) {
    outcome.label = "Cleaned up Docker";
    return CleanupText::outcome(outcome);
  };
  constexpr Bytes estimate = 3'000'000'000;
  EXPECT_EQ(said({.freed = 50'000'001}), "Cleaned up Docker and freed 50 MB.");
  EXPECT_EQ(said({.freed = 50'000'000}), "Cleaned up Docker.");
  EXPECT_EQ(said({.freed = 50'000'000, .estimate = estimate}),
            "Cleaned up Docker, about 3 GB. It can take a moment to show as free.");
  EXPECT_EQ(said({.estimate = 0}), "Cleaned up Docker.");
  EXPECT_EQ(said({}), "Cleaned up Docker.");
  EXPECT_EQ(said({.failure = CleanupFailure::refused("~/x is a symbolic link"), .freed = estimate}),
            "Spacemint didn't delete anything: ~/x is a symbolic link.");
  EXPECT_EQ(said({.failure = CleanupFailure::other("busy")}), "That didn't work: busy");
  EXPECT_EQ(said({.failure = CleanupFailure::needsFullDiskAccess()}),
            "Spacemint needs Full Disk Access to do this.");
  EXPECT_EQ(said({.failure = CleanupFailure::needsFullDiskAccess(), .isTrash = true}),
            "Some items, like hidden ones, are still in the Trash. Turn on Full Disk Access so Spacemint can "
            "remove "
            "them.");
  EXPECT_EQ(said({.failure = CleanupFailure::needsFinderPermission()}),
            "Allow Spacemint to control Finder so it can empty the Trash.");
}

TEST(CleanupText, warnsOfChangesInAWorktree) {
  const GitWorktree known{.repository = "app"};
  const std::string rest = "Runs `git worktree remove`. The branch and its commits stay in app.";
  EXPECT_EQ(CleanupText::worktreeNote(known, 0), rest);
  EXPECT_EQ(CleanupText::worktreeNote(known, 1), "It has 1 uncommitted change, which will be lost. " + rest);
  EXPECT_EQ(CleanupText::worktreeNote(known, 2), "It has 2 uncommitted changes, which will be lost. " + rest);
  EXPECT_EQ(CleanupText::worktreeNote(known, std::nullopt),
            "Spacemint couldn't check it for uncommitted changes; git will stop if there are any. " + rest);
  EXPECT_EQ(CleanupText::worktreeNote({}, 0),
            "Runs `git worktree remove`. The branch and its commits stay in the repository.");
  EXPECT_EQ(CleanupText::worktreeNote({.isOrphaned = true}, std::nullopt),
            "Its repository no longer knows about it, so the folder is simply deleted.");
}

}  // namespace
}  // namespace spacemint
