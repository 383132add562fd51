#include "core/wording/CleanupText.h"

#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"

namespace spacemint {

namespace {

std::string success(const CleanupText::Outcome& outcome) {
  if (outcome.freed && *outcome.freed > CleanupText::worthSaying) {
    return outcome.label + " and freed " + ByteFormat::string(*outcome.freed, outcome.locale) + ".";
  }
  if (outcome.estimate && *outcome.estimate >= 1) {
    return outcome.label + ", about " + ByteFormat::string(*outcome.estimate, outcome.locale) +
           ". It can take a moment to show as free.";
  }
  return outcome.label + ".";
}

std::string changesWarning(std::optional<int> changes) {
  if (!changes) {
    return "Spacemint couldn't check it for uncommitted changes; git will stop if there are any. ";
  }
  if (*changes < 1) return "";
  return "It has " + std::to_string(*changes) + " uncommitted change" + (*changes == 1 ? "" : "s") +
         ", which will be lost. ";
}

}  // namespace

std::string CleanupText::backupNote(const std::string& name) {
  return "You won't be able to restore " + isolatedName(name) + " from it anymore. Other backups stay.";
}

std::string CleanupText::worktreeNote(const GitWorktree& worktree, std::optional<int> uncommittedChanges) {
  if (worktree.isOrphaned) {
    return "Its repository no longer knows about it, so the folder is simply deleted.";
  }
  return changesWarning(uncommittedChanges) +
         "Runs `git worktree remove`. The branch and its commits stay in " +
         isolatedName(worktree.repository.value_or("the repository")) + ".";
}

std::string CleanupText::cacheNote(const CleanupTarget& target, const std::string& shownPath) {
  const auto command = target.commandLine();
  const std::string advice{target.advice};
  if (command) return "Runs `" + *command + "`. " + advice;
  return "Permanently deletes everything inside " + isolatedPath(shownPath) + ". " + advice;
}

std::string CleanupText::outcome(const Outcome& outcome) {
  if (!outcome.failure) return success(outcome);
  switch (outcome.failure->kind) {
    case CleanupFailure::Kind::refused:
      return "Spacemint didn't delete anything: " + outcome.failure->message + ".";
    case CleanupFailure::Kind::other:
      return "That didn't work: " + outcome.failure->message;
    case CleanupFailure::Kind::needsFullDiskAccess:
      return outcome.isTrash
                 ? "Some items, like hidden ones, are still in the Trash. Turn on Full Disk Access so "
                   "Spacemint can remove them."
                 : "Spacemint needs Full Disk Access to do this.";
    case CleanupFailure::Kind::needsFinderPermission:
      return "Allow Spacemint to control Finder so it can empty the Trash.";
  }
  return "";
}

}  // namespace spacemint
