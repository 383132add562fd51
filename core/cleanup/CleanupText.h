#pragma once

#include "core/cleanup/Cleanup.h"

#include <optional>
#include <string>

namespace spacemint {

/// What people read before and after a clean-up, in the window and in the terminal alike.
namespace CleanupText {

/// Less than this many bytes are not worth a mention as freed.
inline constexpr Bytes worthSaying = 50'000'000;

std::string backupNote(const std::string& name);
std::string worktreeNote(const GitWorktree& worktree, const WorktreeContents& contents);
/// `shownPath` is the folder of the cache as people read it.
std::string cacheNote(const CleanupTarget& target, const std::string& shownPath);

/// "12 items (3 MB) are gone already."; empty where nothing is.
std::string goneText(const Removed& removed, const std::string& locale);

/// Why a step failed, and what is gone already.
std::string failureText(const CleanupStep& step, const CleanupReport::Step& result,
                        const CleanupContext& context);

/// Why nothing is asked: the request was refused when it was planned.
std::string refusalText(const CleanupRequest& request, const CleanupFailure& failure,
                        const CleanupContext& context);

/// What was done, as the start of a sentence in `label`, and what came free by it.
struct Success {
  std::string label;
  Removed removed = {};
  std::optional<Bytes> freed = {};
  std::optional<Bytes> estimate = {};
};
std::string successText(const Success& success, const std::string& locale);

/// How the whole clean-up ended, as one message.
std::string outcome(const CleanupPlan& plan, const CleanupReport& report, const CleanupContext& context);

/// What runs at the moment: "Deleting: 1,234 items, 3.4 GB so far".
std::string progressText(const Removed& soFar, Bytes whole, const std::string& locale);

}  // namespace CleanupText

}  // namespace spacemint
