#include "core/cleanup/CleanupText.h"

#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/PlatformWords.h"
#include "core/base/TextList.h"
#include "core/base/Translation.h"
#include "core/wording/FindingText.h"

#include <algorithm>
#include <ranges>
#include <vector>

namespace spacemint {

namespace {

using FailureKind = CleanupFailure::Kind;

std::string changesWarning(std::optional<int> changes) {
  if (!changes) {
    return i18n("Spacemint couldn't check it for uncommitted changes; git will stop if there are any.");
  }
  if (*changes < 1) return "";
  return counted(*changes, "It has {count} uncommitted change, which will be lost.",
                 "It has {count} uncommitted changes, which will be lost.", sentenceLanguage());
}

std::string nestedText(const WorktreeContents::Nested& nested) {
  const std::string changes = nested.changes ? counted(*nested.changes, "{count} uncommitted change",
                                                       "{count} uncommitted changes", sentenceLanguage())
                                             : i18n("changes unknown");
  return i18n(nested.isRepository ? i18nMark("the repository {name} ({changes})")
                                  : i18nMark("the worktree {name} ({changes})"),
              {{"name", isolatedName(nested.path)}, {"changes", changes}});
}

// The sentence about repositories and worktrees inside the worktree: "It contains the repository lib (2
// uncommitted changes), which will be lost too."; empty if there are none.
std::string nestedWarning(const std::vector<WorktreeContents::Nested>& nested) {
  constexpr std::size_t namedAtMost = 3;
  if (nested.empty()) return "";
  std::vector<std::string> named;
  for (const auto& each : nested | std::views::take(namedAtMost)) named.push_back(nestedText(each));
  const std::string list = enumerated(named);
  const std::int64_t others = std::ssize(nested) - std::ssize(named);
  if (others == 0) return i18n("It contains {list}, which will be lost too.", {{"list", list}});
  return i18np("It contains {list} and {count} more, which will be lost too.",
               "It contains {list} and {count} more, which will be lost too.", others,
               {{"list", list}, {"count", numberText(others)}});
}

// True if the freed bytes differ from the removed bytes by more than a tenth and by more than `worthSaying`.
bool differ(Bytes freed, Bytes removed) {
  const Bytes difference = freed > removed ? freed - removed : removed - freed;
  return difference > removed / 10 && difference > CleanupText::worthSaying;
}

}  // namespace

std::string CleanupText::backupNote(const std::string& name) {
  return i18n("You won't be able to restore {device} from it anymore. Other backups stay.",
              {{"device", isolatedName(name)}});
}

std::string CleanupText::worktreeWarning(const WorktreeContents& contents) {
  return sentences(
      {contents.repositoryPath ? changesWarning(contents.changes) : "", nestedWarning(contents.nested)});
}

std::string CleanupText::worktreeNote(const GitWorktree& worktree, const WorktreeContents& contents) {
  if (!contents.repositoryPath)
    return i18n("Its repository no longer knows about it, so the folder is simply deleted.");
  if (!worktree.repository)
    return i18n("Runs `git worktree remove`. The branch and its commits stay in the repository.");
  return i18n("Runs `git worktree remove`. The branch and its commits stay in {repository}.",
              {{"repository", isolatedName(*worktree.repository)}});
}

std::string CleanupText::excludedWarning(const ExcludedSum& excluded, const std::string& locale) {
  if (excluded.items == 0) return "";
  const std::string items = FindingText::excludedItems(excluded, locale);
  if (excluded.size == 0) return i18n("It removes what scans leave out, too: {items}.", {{"items", items}});
  return i18n("It removes what scans leave out, too: {size} in {items}.",
              {{"size", ByteFormat::string(excluded.size, locale)}, {"items", items}});
}

std::string CleanupText::sharedNote(Bytes freesAtMost, const std::string& locale) {
  return i18n("It shares blocks with copies or snapshots, or is compressed: this frees at most {size}.",
              {{"size", ByteFormat::string(freesAtMost, locale)}});
}

std::string CleanupText::cacheNote(const CleanupTarget& target, const std::string& shownPath) {
  const auto command = target.commandLine();
  const std::string advice = i18n(target.advice);
  if (command) return i18n("Runs `{command}`. {advice}", {{"command", *command}, {"advice", advice}});
  return i18n("Permanently deletes everything inside {path}. {advice}",
              {{"path", isolatedPath(shownPath)}, {"advice", advice}});
}

std::string CleanupText::goneText(const Removed& removed, const std::string& locale) {
  if (removed.items == 0) return "";
  return i18np(
      "{count} item ({size}) is gone already.", "{count} items ({size}) are gone already.", removed.items,
      {{"count", groupedNumber(removed.items, locale)}, {"size", ByteFormat::string(removed.bytes, locale)}});
}

namespace {

// Without what was removed before the failure.
std::string reasonText(const CleanupStep& step, const CleanupFailure& failure, bool hasRemoved,
                       const std::string& home) {
  if (failure.kind == FailureKind::needsFullDiskAccess && failure.message.empty()) {
    return sentences({i18n("Some items, like hidden ones, are still in the Trash."),
                      i18n("{text}.", {{"text", i18n(PlatformWords::foldersAreClosed)}})});
  }
  if (step.kind == CleanupStep::Kind::moveToTrash) {
    const std::string shown = isolatedPath(Paths::display(step.path, home));
    // The message of a refusal begins with the path.
    if (failure.kind == FailureKind::refused && failure.message.starts_with(shown)) {
      const std::string it = i18nc("the file or folder that the sentence named before", "it");
      return i18n("Spacemint won't move {path}: {reason}.",
                  {{"path", shown}, {"reason", it + failure.message.substr(shown.size())}});
    }
    return i18n("Couldn't move “{name}” to the Trash: {reason}",
                {{"name", isolatedName(Paths::lastComponent(step.path))}, {"reason", failure.message}});
  }
  if (failure.kind == FailureKind::refused && !hasRemoved)
    return i18n("Spacemint didn't delete anything: {reason}.", {{"reason", failure.message}});
  return i18n("That didn't work: {reason}", {{"reason", failure.message}});
}

}  // namespace

std::string CleanupText::failureText(const CleanupStep& step, const CleanupReport::Step& result,
                                     const CleanupContext& context) {
  const std::string gone = goneText(result.removed, context.locale);
  if (result.failure->kind == FailureKind::stopped) {
    const Bytes left = std::max<Bytes>(0, step.size - result.removed.bytes);
    return sentences({i18n("Stopped."), gone,
                      i18n("About {size} are left.", {{"size", ByteFormat::string(left, context.locale)}})});
  }
  const std::string text = reasonText(step, *result.failure, !gone.empty(), context.guard.home());
  // Chinese and Japanese have a full stop of their own.
  if (gone.empty() || text.ends_with('.') || text.ends_with("。")) return sentences({text, gone});
  return i18n("{problem}. {rest}", {{"problem", text}, {"rest", gone}});
}

std::string CleanupText::refusalText(const CleanupRequest& request, const CleanupFailure& failure,
                                     const CleanupContext& context) {
  CleanupStep step{.path = failure.path};
  if (std::holds_alternative<TrashRequest>(request)) step.kind = CleanupStep::Kind::moveToTrash;
  return failureText(step, {failure, {}}, context);
}

std::string CleanupText::successText(const Success& success, const std::string& locale) {
  const auto bytes = [&](Bytes count) { return ByteFormat::string(count, locale); };
  const std::string& done = success.label;
  std::string text;
  const bool hasSurprise =
      success.freed && success.removed.bytes > 0 && differ(*success.freed, success.removed.bytes);
  if (success.freed && (*success.freed > worthSaying || (hasSurprise && *success.freed >= 0))) {
    text = i18n("{done} and freed {size}.", {{"done", done}, {"size", bytes(*success.freed)}});
  } else if (success.estimate && *success.estimate >= 1) {
    text = i18n("{done}, about {size}. It can take a moment to show as free.",
                {{"done", done}, {"size", bytes(*success.estimate)}});
  } else {
    text = i18n("{done}.", {{"done", done}});
  }
  if (!hasSurprise) return text;
  const bool freedMore = *success.freed > success.removed.bytes;
  return sentences(
      {text,
       i18n(freedMore ? i18nMark("What was removed took up {size}; other programs freed space too.")
                      : i18nMark("What was removed took up {size}; open programs, snapshots, hard links or "
                                 "copies may still hold the rest."),
            {{"size", bytes(success.removed.bytes)}})});
}

namespace {

std::string severalDone(std::size_t moved, std::size_t deleted, std::optional<Bytes> freed,
                        const std::string& locale) {
  const auto count = [&](std::size_t number) {
    return groupedNumber(static_cast<std::int64_t>(number), locale);
  };
  std::string text;
  if (moved > 0) {
    text = i18np("Moved 1 item to the Trash.", "Moved {count} items to the Trash.",
                 static_cast<std::int64_t>(moved), {{"count", count(moved)}});
  }
  if (deleted == 0) return text;
  if (!text.empty()) text += ' ';
  const auto number = static_cast<std::int64_t>(deleted);
  if (freed.value_or(0) > CleanupText::worthSaying) {
    return text + i18np("Deleted 1 item and freed {size}.", "Deleted {count} items and freed {size}.", number,
                        {{"count", count(deleted)}, {"size", ByteFormat::string(*freed, locale)}});
  }
  return text + i18np("Deleted 1 item.", "Deleted {count} items.", number, {{"count", count(deleted)}});
}

// The first few sentences about what stays, a line for each.
std::string firstOf(const std::vector<std::string>& sentences, const std::string& locale) {
  constexpr std::size_t namedAtMost = 3;
  std::string text;
  for (const std::string& sentence : sentences | std::views::take(namedAtMost)) {
    text += (text.empty() ? "" : "\n") + sentence + (sentence.ends_with('.') ? "" : ".");
  }
  if (sentences.size() <= namedAtMost) return text;
  const auto more = static_cast<std::int64_t>(sentences.size() - namedAtMost);
  return text + '\n' +
         i18np("1 more item stays.", "{count} more items stay.", more,
               {{"count", groupedNumber(more, locale)}});
}

// One report on all items that were asked for.
std::string severalOutcome(const CleanupPlan& plan, const CleanupReport& report,
                           const CleanupContext& context) {
  std::size_t moved = 0;
  std::size_t deleted = 0;
  std::vector<std::string> left;
  for (std::size_t i = 0; i < plan.steps.size(); ++i) {
    const CleanupStep& step = plan.steps[i];
    if (i >= report.steps.size()) {
      left.push_back(i18n("{name} stays, because you stopped",
                          {{"name", isolatedName(Paths::lastComponent(step.path))}}));
    } else if (report.steps[i].failure) {
      left.push_back(CleanupText::failureText(step, report.steps[i], context));
    } else {
      ++(step.kind == CleanupStep::Kind::moveToTrash ? moved : deleted);
    }
  }
  for (const CleanupFailure& refused : plan.refused) left.push_back(refused.message);
  const std::string done = severalDone(moved, deleted, report.freed(), context.locale);
  return left.empty() ? done : done + (done.empty() ? "" : "\n") + firstOf(left, context.locale);
}

}  // namespace

void CleanupText::describeSeveral(CleanupPlan& plan, std::size_t moved, const std::string& locale) {
  const auto count = std::ssize(plan.steps);
  const std::string number = groupedNumber(count, locale);
  const bool movesAll = moved == plan.steps.size();
  plan.subject = i18np("1 item · {size}", "{count} items · {size}", count,
                       {{"count", number}, {"size", ByteFormat::string(plan.size(), locale)}});
  if (movesAll) {
    plan.title =
        i18np("Move 1 item to the Trash?", "Move {count} items to the Trash?", count, {{"count", number}});
    plan.note = i18n("You can put them back from the Trash until you empty it.");
    plan.button = i18n("Move to Trash");
  } else if (moved == 0) {
    plan.title =
        i18np("Delete 1 item permanently?", "Delete {count} items permanently?", count, {{"count", number}});
    plan.note = i18n("This removes them for good.");
    plan.button = i18n("Delete");
  } else {
    const auto deleted = count - static_cast<std::int64_t>(moved);
    plan.title = i18np("Remove 1 item?", "Remove {count} items?", count, {{"count", number}});
    plan.note = i18np("One is in the Trash already and is deleted for good.",
                      "{count} are in the Trash already and are deleted for good.", deleted,
                      {{"count", groupedNumber(deleted, locale)}});
    plan.button = i18n("Remove");
  }
  if (plan.refused.empty()) return;
  plan.note += "\n" + i18np("1 other selected item stays: {reason}.",
                            "{count} other selected items stay: {reason}.", std::ssize(plan.refused),
                            {{"count", groupedNumber(std::ssize(plan.refused), locale)},
                             {"reason", plan.refused.front().message}});
}

std::string CleanupText::outcome(const CleanupPlan& plan, const CleanupReport& report,
                                 const CleanupContext& context) {
  if (!plan.items.empty()) return severalOutcome(plan, report, context);
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
    return i18n("Running `{program}`",
                {{"program", Paths::lastComponent(plan.steps.front().command.program)}});
  }
  const Bytes whole = plan.size();
  const std::string items = counted(soFar.items, "{count} item", "{count} items", locale);
  return i18n(whole > soFar.bytes ? i18nMark("Deleting: {items}, {size} of {whole} so far")
                                  : i18nMark("Deleting: {items}, {size} so far"),
              {{"items", items},
               {"size", ByteFormat::string(soFar.bytes, locale)},
               {"whole", ByteFormat::string(whole, locale)}});
}

}  // namespace spacemint
