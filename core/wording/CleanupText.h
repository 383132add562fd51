#pragma once

#include "core/analysis/GitWorktrees.h"
#include "core/base/Bytes.h"
#include "core/cleanup/CleanupFailure.h"
#include "core/places/CleanupTarget.h"

#include <optional>
#include <string>
#include <string_view>

namespace spacemint {

/// What people read before and after a clean-up, in the window and in the terminal alike.
namespace CleanupText {

inline constexpr std::string_view deleteQuestion = "Delete permanently?";
inline constexpr std::string_view deleteNote = "This removes it for good.";
inline constexpr std::string_view emptyTrashQuestion = "Empty the Trash?";
inline constexpr std::string_view emptyTrashNote = "Deletes everything for good, including hidden items.";
inline constexpr std::string_view deleteBackupQuestion = "Delete this backup?";
inline constexpr std::string_view removeWorktreeQuestion = "Remove this worktree?";

std::string backupNote(const std::string& name);

/// `uncommittedChanges` is absent where they could not be counted.
std::string worktreeNote(const GitWorktree& worktree, std::optional<int> uncommittedChanges);

/// What cleaning a cache does; `shownPath` is its folder as people read it.
std::string cacheNote(const CleanupTarget& target, const std::string& shownPath);

struct Outcome {
  /// What was done, as the start of a sentence: "Deleted old.zip".
  std::string label;
  std::optional<CleanupFailure> failure = {};
  /// What the volume has more free than before; absent where it could not be asked.
  std::optional<Bytes> freed = {};
  std::optional<Bytes> estimate = {};
  bool isTrash = false;
  std::string locale = "en";
};

/// How a clean-up ended.
std::string outcome(const Outcome& outcome);

/// Less than this many bytes are not worth saying that they were freed.
inline constexpr Bytes worthSaying = 50'000'000;

}  // namespace CleanupText

}  // namespace spacemint
