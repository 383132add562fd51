#include "core/cleanup/Cleanup.h"

#include "core/base/Isolate.h"
#include "core/base/Translation.h"
#include "core/tree/Paths.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>

namespace spacemint {

namespace {

using Kind = CleanupStep::Kind;

// Codes of errors in `fileManagerErrorDomain`.
constexpr int readNoPermission = 257;
constexpr int writeNoPermission = 513;
// In bytes. Below this size, free space cannot show whether the Trash was emptied.
constexpr Bytes trashThatShows = 1'000'000'000;

// How the guard checks the path of a step.
struct Rule {
  Kind kind = {};
  bool asksGuard = true;
  bool outsideHomeAllowed = false;
  bool linkItself = false;
};
// The Trash folder is protected, but its entries may be removed. A tool may clean a cache outside the home
// folder or behind a link, but no protected folder.
constexpr Rule rules[]{
    {Kind::deleteItem},
    {Kind::emptyFolder},
    {.kind = Kind::emptyTrash, .asksGuard = false},
    {.kind = Kind::moveToTrash, .outsideHomeAllowed = true},
    {.kind = Kind::runTool, .outsideHomeAllowed = true, .linkItself = true},
    {.kind = Kind::removeWorktree, .outsideHomeAllowed = true},
};

const Rule& ruleOf(Kind kind) {
  return *std::ranges::find(rules, kind, &Rule::kind);
}

// The path with all symbolic links resolved: the folder that a tool will change. Names that do not exist stay
// as they are. On failure the path itself.
std::string realPath(const std::string& path) {
  std::error_code failure;
  const auto real = std::filesystem::weakly_canonical(path, failure);
  return failure ? path : real.string();
}

// `reason` is a sentence about "{item}".
CleanupFailure changed(const CleanupStep& step, const DeletionGuard& guard, const std::string& reason) {
  return CleanupFailure::refused(
      fillIn(reason, {{"item", isolatedPath(Paths::display(step.path, guard.home()))}}), step.path);
}

std::optional<CleanupFailure> failureOf(const std::expected<void, RemovalFailure>& result,
                                        const DeletionGuard& guard) {
  using FailureKind = CleanupFailure::Kind;
  if (result) return std::nullopt;
  const auto& [error, path] = result.error();
  if (error.isSystem(ECANCELED)) return CleanupFailure::stopped();
  FailureKind kind = FailureKind::other;
  if (error.domain == keptByCheck) kind = FailureKind::refused;
  if (Cleanup::isPermissionError(error)) kind = FailureKind::needsFullDiskAccess;
  return CleanupFailure{
      kind, fillIn(error.message, {{"item", isolatedPath(Paths::display(path, guard.home()))}}), path};
}

std::optional<CleanupFailure> guardRefusal(const CleanupStep& step, const DeletionGuard& guard) {
  const Rule& rule = ruleOf(step.kind);
  DeletionGuard::Question question{step.path, rule.outsideHomeAllowed, rule.linkItself};
  auto reason = guard.refusal(question);
  if (!reason && step.kind == Kind::runTool) {
    question.path = realPath(step.path);
    reason = guard.refusal(question);
  }
  return reason ? std::optional{CleanupFailure::refused(*reason, step.path)} : std::nullopt;
}

// Tools and git do not check identity when they remove files, so check it before they start.
std::optional<CleanupFailure> judgeForOthers(const CleanupStep& step, const CleanupContext& context) {
  const auto identity = Cleanup::identityOf(step);
  if (!identity || identity.value() != step.identity) {
    return changed(step, context.guard, i18n("{item} is no longer what it was"));
  }
  if (step.kind == Kind::removeWorktree && worktreeContents(step.path, context) != step.worktree) {
    return changed(step, context.guard, i18n("{item} has changes that were not shown"));
  }
  return std::nullopt;
}

std::optional<CleanupFailure> carryOutStep(const CleanupStep& step, const CleanupContext& context,
                                           RemovalProgress& progress) {
  const RemovalTarget target{
      .path = Paths::logical(step.path), .linksAllowedUpTo = context.guard.home(), .identity = step.identity};
  const auto check = [&](const std::string& path) {
    return context.guard.check({.path = Paths::plain(path), .outsideHomeAllowed = true, .linkItself = true});
  };
  switch (step.kind) {
    case Kind::deleteItem:
      return failureOf(removeItem(target, progress), context.guard);
    case Kind::emptyFolder:
    case Kind::emptyTrash:
      return failureOf(emptyFolder(target, check, progress), context.guard);
    case Kind::moveToTrash: {
      const auto moved = context.trash->move(target);
      return moved ? std::nullopt : failureOf(std::unexpected(moved.error()), context.guard);
    }
    case Kind::runTool:
    case Kind::removeWorktree:
      return context.run(step.command, [&] { return progress.mayGoOn(); });
  }
  return std::nullopt;
}

}  // namespace

std::expected<FileIdentity, Error> Cleanup::identityOf(const CleanupStep& step) {
  return fileIdentity(step.kind == Kind::runTool ? realPath(step.path) : Paths::logical(step.path));
}

std::optional<CleanupFailure> Cleanup::refusalOf(const CleanupStep& step, const DeletionGuard& guard) {
  if (!ruleOf(step.kind).asksGuard) {
    std::error_code failure;
    const auto status = std::filesystem::symlink_status(Paths::logical(step.path), failure);
    if (std::filesystem::is_symlink(status)) return changed(step, guard, i18n("{item} is a symbolic link"));
  } else if (auto refused = guardRefusal(step, guard)) {
    return refused;
  }
  if (!step.runsCommand()) return std::nullopt;
  // Tools and git enter mounts, and so does the search for repositories in a worktree.
  const auto mount = mountedIn(step.path);
  if (!mount) return std::nullopt;
  return changed(step, guard,
                 i18n("{item} has something else mounted in it, at {mount}",
                      {{"mount", Paths::display(*mount, guard.home())}}));
}

std::optional<CleanupFailure> Cleanup::judge(const CleanupStep& step, const CleanupContext& context) {
  if (step.path.empty() && step.kind == Kind::runTool) return std::nullopt;
  if (auto refused = refusalOf(step, context.guard)) return refused;
  return step.runsCommand() ? judgeForOthers(step, context) : std::nullopt;
}

CleanupReport Cleanup::carryOut(const CleanupPlan& plan, const CleanupContext& context,
                                const RemovalProgress::Watch& watch) {
  CleanupReport report{.freeBefore = context.freeBytes()};
  for (const CleanupStep& step : plan.steps) {
    const Removed before = report.removed();
    const auto sumWatch = [&](const Removed& now) {
      return !watch || watch({before.items + now.items, saturatingAdd(before.bytes, now.bytes)});
    };
    if (!sumWatch({})) break;
    RemovalProgress progress{sumWatch};
    auto failure = judge(step, context);
    if (!failure) failure = carryOutStep(step, context, progress);
    report.steps.push_back({std::move(failure), progress.removed()});
    if (report.steps.back().failure && plan.stopsAtFailure) break;
  }
  report.freeAfter = context.freeBytes();
  return report;
}

void Cleanup::settle(CleanupReport& report, const CleanupPlan& plan, std::optional<Bytes> freeAfter) {
  report.freeAfter = freeAfter;
  const bool shows = plan.expected && *plan.expected > trashThatShows && report.failure() == nullptr;
  if (shows && !report.steps.empty() && report.freed().value_or(0) < *plan.expected / 2) {
    report.steps.back().failure = CleanupFailure{CleanupFailure::Kind::needsFullDiskAccess, ""};
  }
}

bool Cleanup::touchEachOther(const CleanupPlan& one, const CleanupPlan& other) {
  const auto holds = [](const std::string& outer, const std::string& inner) {
    return Paths::join(realPath(inner), "").starts_with(Paths::join(realPath(outer), ""));
  };
  return one.id == other.id || std::ranges::any_of(one.steps, [&](const CleanupStep& a) {
           return !a.path.empty() && std::ranges::any_of(other.steps, [&](const CleanupStep& b) {
             return !b.path.empty() && (holds(a.path, b.path) || holds(b.path, a.path));
           });
         });
}

bool Cleanup::isPermissionError(const Error& error) {
  for (const Error* at = &error; at != nullptr; at = at->underlying.get()) {
    if (at->domain == fileManagerErrorDomain &&
        (at->code == readNoPermission || at->code == writeNoPermission)) {
      return true;
    }
    if (at->isSystem(EPERM) || at->isSystem(EACCES)) return true;
  }
  return false;
}

Removed CleanupReport::removed() const {
  Removed sum;
  for (const Step& step : steps) {
    sum.items += step.removed.items;
    sum.bytes = saturatingAdd(sum.bytes, step.removed.bytes);
  }
  return sum;
}

std::optional<Bytes> CleanupReport::freed() const {
  if (!freeBefore || !freeAfter) return std::nullopt;
  return saturatingSubtract(*freeAfter, *freeBefore);
}

const CleanupFailure* CleanupReport::failure() const {
  const auto failed = std::ranges::find_if(steps, [](const Step& step) { return step.failure.has_value(); });
  return failed == steps.end() ? nullptr : &*failed->failure;
}

bool CleanupReport::isComplete(const CleanupPlan& plan) const {
  return steps.size() == plan.steps.size() && failure() == nullptr;
}

}  // namespace spacemint
