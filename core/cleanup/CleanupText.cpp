#include "core/cleanup/CleanupText.h"

#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/PlatformWords.h"
#include "core/wording/FindingText.h"

#include <algorithm>

namespace spacemint {

namespace {

using FailureKind = CleanupFailure::Kind;

std::string changesWarning(std::optional<int> changes) {
  if (!changes) {
    return "Spacemint couldn't check it for uncommitted changes; git will stop if there are any. ";
  }
  if (*changes < 1) return "";
  return "It has " + counted(*changes, "uncommitted change", "en") + ", which will be lost. ";
}

// The sentence about repositories and worktrees inside the worktree: "It contains the repository lib (2
// uncommitted changes), which will be lost too. "; empty if there are none.
std::string nestedWarning(const std::vector<WorktreeContents::Nested>& nested) {
  constexpr std::size_t namedAtMost = 3;
  if (nested.empty()) return "";
  std::string text = "It contains ";
  for (std::size_t i = 0; i < std::min(nested.size(), namedAtMost); ++i) {
    const auto& each = nested[i];
    text += (i == 0 ? "" : ", ") + std::string{each.isRepository ? "the repository " : "the worktree "} +
            isolatedName(each.path) + " (" +
            (each.changes ? counted(*each.changes, "uncommitted change", "en") : "changes unknown") + ")";
  }
  if (nested.size() > namedAtMost) text += " and " + std::to_string(nested.size() - namedAtMost) + " more";
  return text + ", which will be lost too. ";
}

// True if the freed bytes differ from the removed bytes by more than a tenth and by more than `worthSaying`.
bool differ(Bytes freed, Bytes removed) {
  const Bytes difference = freed > removed ? freed - removed : removed - freed;
  return difference > removed / 10 && difference > CleanupText::worthSaying;
}

}  // namespace

std::string CleanupText::backupNote(const std::string& name) {
  return "You won't be able to restore " + isolatedName(name) + " from it anymore. Other backups stay.";
}

std::string CleanupText::worktreeNote(const GitWorktree& worktree, const WorktreeContents& contents) {
  if (!contents.repositoryPath) {
    return nestedWarning(contents.nested) +
           "Its repository no longer knows about it, so the folder is simply deleted.";
  }
  return changesWarning(contents.changes) + nestedWarning(contents.nested) +
         "Runs `git worktree remove`. The branch and its commits stay in " +
         isolatedName(worktree.repository.value_or("the repository")) + ".";
}

std::string CleanupText::sharedNote(Bytes freesAtMost, const std::string& locale) {
  return "It shares blocks with copies or snapshots, or is compressed: this " +
         FindingText::freesAtMost(freesAtMost, locale) + ".";
}

std::string CleanupText::cacheNote(const CleanupTarget& target, const std::string& shownPath) {
  const auto command = target.commandLine();
  const std::string advice{target.advice};
  if (command) return "Runs `" + *command + "`. " + advice;
  return "Permanently deletes everything inside " + isolatedPath(shownPath) + ". " + advice;
}

std::string CleanupText::goneText(const Removed& removed, const std::string& locale) {
  if (removed.items == 0) return "";
  return counted(removed.items, "item", locale) + " (" + ByteFormat::string(removed.bytes, locale) +
         (removed.items == 1 ? ") is" : ") are") + " gone already.";
}

std::string CleanupText::failureText(const CleanupStep& step, const CleanupReport::Step& result,
                                     const CleanupContext& context) {
  const CleanupFailure& failure = *result.failure;
  const std::string& locale = context.locale;
  const std::string gone = goneText(result.removed, locale);
  if (failure.kind == FailureKind::stopped) {
    const Bytes left = std::max<Bytes>(0, step.size - result.removed.bytes);
    return "Stopped. " + gone + (gone.empty() ? "" : " ") + "About " + ByteFormat::string(left, locale) +
           " are left.";
  }
  std::string text;
  if (failure.kind == FailureKind::needsFullDiskAccess && failure.message.empty()) {
    text = std::string{"Some items, like hidden ones, are still in the Trash. "} +
           std::string{PlatformWords::foldersAreClosed} + ".";
  } else if (step.kind == CleanupStep::Kind::moveToTrash) {
    const std::string shown = Paths::display(step.path, context.guard.home());
    // The message of a refusal begins with the path.
    text = failure.kind == FailureKind::refused && failure.message.starts_with(shown)
               ? "Spacemint won't move " + isolatedPath(shown) + ": it" +
                     failure.message.substr(shown.size()) + "."
               : "Couldn't move “" + isolatedName(Paths::lastComponent(step.path)) +
                     "” to the Trash: " + failure.message;
  } else if (failure.kind == FailureKind::refused && gone.empty()) {
    text = "Spacemint didn't delete anything: " + failure.message + ".";
  } else {
    text = "That didn't work: " + failure.message;
  }
  if (gone.empty()) return text;
  return text + (text.ends_with('.') ? " " : ". ") + gone;
}

std::string CleanupText::refusalText(const CleanupRequest& request, const CleanupFailure& failure,
                                     const CleanupContext& context) {
  CleanupStep step{.path = failure.path};
  if (std::holds_alternative<TrashRequest>(request)) step.kind = CleanupStep::Kind::moveToTrash;
  return failureText(step, {failure, {}}, context);
}

std::string CleanupText::successText(const Success& success, const std::string& locale) {
  const auto bytes = [&](Bytes count) { return ByteFormat::string(count, locale); };
  std::string text = success.label;
  const bool hasSurprise =
      success.freed && success.removed.bytes > 0 && differ(*success.freed, success.removed.bytes);
  if (success.freed && (*success.freed > worthSaying || (hasSurprise && *success.freed >= 0))) {
    text += " and freed " + bytes(*success.freed) + ".";
  } else if (success.estimate && *success.estimate >= 1) {
    text += ", about " + bytes(*success.estimate) + ". It can take a moment to show as free.";
  } else {
    text += ".";
  }
  if (!hasSurprise) return text;
  text += " What was removed took up " + bytes(success.removed.bytes);
  if (*success.freed > success.removed.bytes) return text + "; other programs freed space too.";
  return text + "; open programs, snapshots, hard links or copies may still hold the rest.";
}

std::string CleanupText::outcome(const CleanupPlan& plan, const CleanupReport& report,
                                 const CleanupContext& context) {
  for (std::size_t i = 0; i < report.steps.size(); ++i) {
    if (report.steps[i].failure) return failureText(plan.steps[i], report.steps[i], context);
  }
  if (report.steps.empty()) return failureText(plan.steps.front(), {CleanupFailure::stopped(), {}}, context);
  const bool frees = plan.steps.front().kind != CleanupStep::Kind::moveToTrash;
  return successText({.label = plan.steps.front().label,
                      .removed = report.removed(),
                      .freed = frees ? report.freed() : std::nullopt,
                      .estimate = plan.estimate},
                     context.locale);
}

std::string CleanupText::progressText(const CleanupPlan& plan, const Removed& soFar,
                                      const std::string& locale) {
  if (soFar.items == 0 && plan.steps.front().runsCommand()) {
    return "Running `" + Paths::lastComponent(plan.steps.front().command.program) + "`";
  }
  const Bytes whole = plan.size();
  std::string text =
      "Deleting: " + counted(soFar.items, "item", locale) + ", " + ByteFormat::string(soFar.bytes, locale);
  if (whole > soFar.bytes) text += " of " + ByteFormat::string(whole, locale);
  return text + " so far";
}

}  // namespace spacemint
