#pragma once

#include "core/cleanup/CleanupPlan.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace spacemint {

/// What came of a clean-up.
struct CleanupReport {
  struct Step {
    std::optional<CleanupFailure> failure;
    /// What this program removed itself; nothing for a tool.
    Removed removed;
  };

  /// The steps that were begun, in the order of the plan.
  std::vector<Step> steps = {};
  std::optional<Bytes> freeBefore = {};
  std::optional<Bytes> freeAfter = {};

  Removed removed() const;
  /// What the volume has more free than before; absent where it could not be read.
  std::optional<Bytes> freed() const;
  /// The first failure, if there is one.
  const CleanupFailure* failure() const;
  bool isComplete(const CleanupPlan& plan) const;
};

namespace Cleanup {

/// Why a step may not be carried out now: the guard refuses its path, something is mounted below it, another
/// item stands there than the confirmed one, or a worktree holds other changes than those that were counted.
/// Absent where it may. Blocks; any thread.
std::optional<CleanupFailure> judge(const CleanupStep& step, const CleanupContext& context);

/// The guard's answer alone, for a button that should not be offered.
std::optional<CleanupFailure> refusalOf(const CleanupStep& step, const DeletionGuard& guard);

/// Device and inode of the item of a step; for a tool those of the folder where links lead to.
std::expected<FileIdentity, Error> identityOf(const CleanupStep& step);

/// Judges each step again right before it, and carries it out. `watch` is called on this thread before
/// each entry with the sum of what was removed; false stops the clean-up there. Blocks for as long as the
/// removal takes; what is gone by then stays gone. Any thread.
CleanupReport carryOut(const CleanupPlan& plan, const CleanupContext& context,
                       const RemovalProgress::Watch& watch = {});

/// Adds the reading of the volume after its figures have settled, and the failure that shows in it only: that
/// of a file manager that did not empty the Trash.
void settle(CleanupReport& report, const CleanupPlan& plan, std::optional<Bytes> freeAfter);

/// True when a step of one plan lies in, at or above a step of the other, or both have the same id. Two such
/// clean-ups must not run at once.
bool touchEachOther(const CleanupPlan& one, const CleanupPlan& other);

}  // namespace Cleanup

}  // namespace spacemint
