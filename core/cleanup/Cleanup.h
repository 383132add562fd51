#pragma once

#include "core/cleanup/CleanupPlan.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace spacemint {

/// The result of a clean-up.
struct CleanupReport {
  struct Step {
    std::optional<CleanupFailure> failure;
    /// The items that this program removed itself; zero for a step that ran a tool.
    Removed removed;
  };

  /// The steps that were started, in the order of the plan.
  std::vector<Step> steps = {};
  std::optional<Bytes> freeBefore = {};
  std::optional<Bytes> freeAfter = {};

  Removed removed() const;
  /// By how many bytes the volume's free space grew; absent if the free space could not be read.
  std::optional<Bytes> freed() const;
  /// The first failure; null if there is none.
  const CleanupFailure* failure() const;
  bool isComplete(const CleanupPlan& plan) const;
};

namespace Cleanup {

/// Checks whether a step may be carried out now, and returns the reason if it may not: `refusalOf`; or,
/// before a command runs, the item is not the confirmed one, or a worktree's changes differ from those that
/// the user saw. Blocks; any thread.
std::optional<CleanupFailure> judge(const CleanupStep& step, const CleanupContext& context);

/// Why a step may not even be planned: the guard refuses the path; or a command would run while a file system
/// is mounted at or below the path. Fast; any thread.
std::optional<CleanupFailure> refusalOf(const CleanupStep& step, const DeletionGuard& guard);

/// The identity of a step's item; for a tool, of the folder with symbolic links resolved.
std::expected<FileIdentity, Error> identityOf(const CleanupStep& step);

/// Carries out each step, after calling `judge` again right before the step. Calls `watch` on this thread
/// before each entry, with the sum of the removed items; false stops the clean-up. Items removed before a
/// stop or a failure stay removed. Blocks until the clean-up ends; any thread.
CleanupReport carryOut(const CleanupPlan& plan, const CleanupContext& context,
                       const RemovalProgress::Watch& watch = {});

/// Adds the free space read some time after the clean-up. If the file manager was asked to empty a large
/// Trash and the free space did not grow accordingly, adds a failure to the last step.
void settle(CleanupReport& report, const CleanupPlan& plan, std::optional<Bytes> freeAfter);

/// True if both plans have the same id, or a path of one is equal to, inside or above a path of the other,
/// with symbolic links resolved. Two such clean-ups must not run at the same time.
bool touchEachOther(const CleanupPlan& one, const CleanupPlan& other);

}  // namespace Cleanup

}  // namespace spacemint
