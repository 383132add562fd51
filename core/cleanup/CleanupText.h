#pragma once

#include "core/cleanup/Cleanup.h"

#include <optional>
#include <string>

namespace spacemint {

/// Texts before and after a clean-up, shared by the application and spacemintctl. Pure; any thread.
namespace CleanupText {

/// Freed bytes are mentioned only above this number.
inline constexpr Bytes worthSaying = 50'000'000;

std::string backupNote(const std::string& name);
/// What else is lost with the worktree; empty for nothing.
std::string worktreeWarning(const WorktreeContents& contents);
std::string worktreeNote(const GitWorktree& worktree, const WorktreeContents& contents);
/// What goes with the items although the user excluded it from scans; empty for nothing.
std::string excludedWarning(const ExcludedSum& excluded, const std::string& locale);
/// For a file that frees less than its size (`SharedFiles::freesAtMost`, in bytes).
std::string sharedNote(Bytes freesAtMost, const std::string& locale);
/// `shownPath` is the cache's folder for display.
std::string cacheNote(const CleanupTarget& target, const std::string& shownPath);

/// Sets the title, the subject, the note and the button of a plan for several items, of which `moved` go to
/// the Trash and the others are deleted.
void describeSeveral(CleanupPlan& plan, std::size_t moved, const std::string& locale);

/// "12 items (3 MB) are gone already."; empty if no item was removed.
std::string goneText(const Removed& removed, const std::string& locale);

/// Why a step failed, and how much was removed before the failure.
std::string failureText(const CleanupStep& step, const CleanupReport::Step& result,
                        const CleanupContext& context);

/// The message for a request that `planCleanup` refused.
std::string refusalText(const CleanupRequest& request, const CleanupFailure& failure,
                        const CleanupContext& context);

/// A completed clean-up. `label` is the start of the sentence; `removed` and `freed` are measured, `estimate`
/// (in bytes) is a tool's own figure.
struct Success {
  std::string label;
  Removed removed = {};
  std::optional<Bytes> freed = {};
  std::optional<Bytes> estimate = {};
};
std::string successText(const Success& success, const std::string& locale);

/// The message about the result of the whole clean-up.
std::string outcome(const CleanupPlan& plan, const CleanupReport& report, const CleanupContext& context);

/// The message about a running clean-up: "Deleting: 1,234 items, 1.2 GB of 3.4 GB so far", or "Running `npm`"
/// while a tool has removed nothing that could be counted.
std::string progressText(const CleanupPlan& plan, const Removed& soFar, const std::string& locale);

}  // namespace CleanupText

}  // namespace spacemint
