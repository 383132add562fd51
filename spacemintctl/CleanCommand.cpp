#include "spacemintctl/CleanCommand.h"

#include "Spacemint/tools/ToolRuns.h"
#include "core/analysis/DevTools.h"
#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "core/cleanup/CleanupText.h"
#include "core/cleanup/Remeasure.h"
#include "core/history/SnapshotWriter.h"
#include "core/host/UserFolders.h"
#include "core/host/VolumeInfo.h"
#include "core/volume/VolumeStatus.h"
#include "spacemintctl/CleanText.h"
#include "spacemintctl/Interrupt.h"
#include "spacemintctl/ProgressLine.h"
#include "spacemintctl/Question.h"
#include "spacemintctl/StoredScan.h"

#include <algorithm>
#include <filesystem>

namespace spacemint::ctl {

namespace {

constexpr Bytes cacheMinimum = 50'000'000;

// A plan, and messages that the terminal prints in addition.
struct Proposal {
  CleanupPlan plan;
  /// Items that the plan leaves out although the user may expect them, with the reason; one line each.
  std::vector<std::string> leftOut = {};
  std::string nothingToDo = {};
};
using Proposed = std::expected<Proposal, std::string>;

std::optional<Bytes> freeBytes() {
  const auto volume = VolumeStatus::current(startupVolume());
  return volume ? std::optional{volume->free} : std::nullopt;
}

// The absolute form of a path on the command line, without "." and doubled "/". If the home folder is a
// symbolic link, a path below the link's target is rewritten as a path below the home folder.
std::string absolutePath(const std::string& given, const std::string& home) {
  namespace fs = std::filesystem;
  if (given.empty()) return given;
  std::error_code failure;
  std::string path = given;
  if (!path.starts_with('/')) path = (fs::current_path(failure) / path).lexically_normal().string();
  path = Paths::plain(path);
  const std::string realHome = fs::canonical(home, failure).string() + "/";
  return path.starts_with(realHome) ? Paths::join(home, path.substr(realHome.size())) : path;
}

class Proposer {
 public:
  Proposer(const CleanOptions& options, const CleanupContext& context)
      : options_(options),
        context_(context),
        home_(context.guard.home()),
        scan_(storedScan(SnapshotStore::standard(), "")) {}

  Proposed propose(CleanKind kind) const {
    const std::string path = absolutePath(options_.path, home_);
    switch (kind) {
      case CleanKind::caches:
        return proposeCaches();
      case CleanKind::trash: {
        const TrashPlace place = trashPlace(scan_ ? &*scan_ : nullptr, home_, context_.data);
        auto proposal = proposalFor(EmptyTrashRequest{.place = place});
        if (proposal) proposal->nothingToDo = i18n("There is no Trash.");
        return proposal;
      }
      case CleanKind::backup:
        return proposeBackup(path);
      case CleanKind::worktree: {
        if (const auto refused = context_.guard.refusal({.path = path, .outsideHomeAllowed = true}))
          return std::unexpected(*refused);
        const auto worktree = GitWorktrees::inspect(path, 0);
        if (!worktree) return std::unexpected(i18n("{path}: not a git worktree", {{"path", path}}));
        return proposalFor(*worktree);
      }
      case CleanKind::path:
        return proposePaths();
    }
    return Proposal{};
  }

 private:
  Proposed proposalFor(const CleanupRequest& request) const {
    auto plan =
        planCleanup(request, context_, std::chrono::floor<Date::duration>(std::chrono::system_clock::now()));
    if (!plan) return std::unexpected(plan.error().message);
    for (const CleanupStep& step : plan->steps) {
      if (!step.wasThere()) return std::unexpected(i18n("{item} does not exist", {{"item", step.path}}));
    }
    return Proposal{.plan = std::move(*plan)};
  }

  Proposed proposePaths() const {
    SeveralRequest request;
    for (const std::string& given : options_.paths) {
      const std::string path = absolutePath(given, home_);
      request.items.push_back(
          DeleteRequest{.path = path, .name = Paths::lastComponent(path), .note = i18n(deleteNote)});
    }
    if (request.items.size() == 1) return proposalFor(std::get<DeleteRequest>(request.items.front()));
    auto proposal = proposalFor(request);
    if (!proposal) return proposal;
    for (const CleanupFailure& refused : proposal->plan.refused) proposal->leftOut.push_back(refused.message);
    return proposal;
  }

  Proposed proposeBackup(const std::string& path) const {
    if (!scan_) return std::unexpected(scan_.error().message);
    for (const DeviceBackup& backup : DeviceBackups::find({.in = *scan_, .home = home_})) {
      if (Paths::logical(backup.path) == path) return proposalFor(backup);
    }
    return std::unexpected(i18n("{path}: no backup of the newest scan", {{"path", path}}));
  }

  Proposed proposeCaches() const {
    const auto& ids = options_.ids;
    const auto caches = chosenCaches();
    if (!caches) return std::unexpected(caches.error());
    Proposal proposal{.nothingToDo = i18n("No cache is large enough to be worth cleaning.")};
    std::vector<CleanupPlan> plans;
    for (const DevTools::FoundCleanup& found : *caches) {
      auto each = proposalFor(found);
      if (each) {
        plans.push_back(std::move(each->plan));
      } else if (ids.empty()) {
        proposal.leftOut.push_back(
            i18n("{cache}: {reason}", {{"cache", i18n(found.target->title)}, {"reason", each.error()}}));
      } else {
        return each;
      }
    }
    const std::string title = i18np("Clean up {count} cache?", "Clean up {count} caches?", std::ssize(plans),
                                    {{"count", numberText(std::ssize(plans))}});
    proposal.plan = mergedPlans(title, std::move(plans));
    return proposal;
  }

  std::expected<std::vector<DevTools::FoundCleanup>, std::string> chosenCaches() const {
    if (!scan_) return std::unexpected(scan_.error().message);
    const auto& ids = options_.ids;
    auto found = DevTools::cleanups({.in = *scan_,
                                     .home = home_,
                                     .minimum = ids.empty() ? cacheMinimum : 0,
                                     .environment = UserFolders::environment});
    if (ids.empty()) return found;
    for (const std::string& id : ids) {
      if (std::ranges::find(DevTools::cleanups(), id, &CleanupTarget::id) == DevTools::cleanups().end()) {
        return std::unexpected(
            i18n("no cache has the id \"{id}\"; see \"spacemintctl caches --json\"", {{"id", id}}));
      }
      if (std::ranges::find(found, id, &DevTools::FoundCleanup::id) == found.end()) {
        return std::unexpected(i18n("{id}: not in the newest scan", {{"id", id}}));
      }
    }
    std::erase_if(found, [&](const auto& each) { return std::ranges::find(ids, each.id()) == ids.end(); });
    return found;
  }

  const CleanOptions& options_;
  const CleanupContext& context_;
  std::string home_;
  std::expected<Snapshot, Error> scan_;
};

// Shows the plan and asks for confirmation unless --yes was given; true if the plan may be carried out.
bool confirmed(const Proposal& proposal, const CleanOptions& options, const Wording& wording) {
  const std::string text = planText(proposal.plan, proposal.leftOut, wording);
  if (options.yes) return options.json || print(text);
  if (!canAsk()) {
    if (!options.json) print(text);
    complain(i18n("nothing was removed: not confirmed, because there is no terminal; use --yes"));
    return false;
  }
  std::fputs(text.c_str(), stderr);
  if (ask(proposal.plan.title)) return true;
  complain(i18n("nothing was removed"));
  return false;
}

void complainOfFailures(const CleanupPlan& plan, const CleanupReport& report, const CleanupContext& context) {
  for (std::size_t i = 0; i < report.steps.size(); ++i) {
    if (!report.steps[i].failure) continue;
    const std::string about = plan.steps.size() > 1 ? plan.steps[i].path + ": " : "";
    complain(printable(about + CleanupText::failureText(plan.steps[i], report.steps[i], context)));
  }
  if (report.steps.size() < plan.steps.size()) complain(i18n("the remaining steps were not started"));
}

CleanupReport carryOutWithProgress(const CleanupPlan& plan, const CleanupContext& context,
                                   bool showsProgress) {
  ProgressLine line{showsProgress, {.bytes = plan.size()}, context.locale};
  return Cleanup::carryOut(plan, context, [&](const Removed& soFar) {
    if (soFar.items > 0) line.show([&] { return CleanupText::progressText(plan, soFar, context.locale); });
    return !wasInterrupted();
  });
}

int carryOut(const CleanupPlan& plan, const CleanOptions& options, const CleanupContext& context,
             const Wording& wording) {
  noteInterrupts();
  const CleanupReport report =
      carryOutWithProgress(plan, context, ProgressLine::canBeSeen() && !options.json);
  const auto remeasured = remeasureInNewestScan(plan.touched);
  complainOfFailures(plan, report, context);
  if (!remeasured)
    complain(i18n("couldn't save changes to the scan: {reason}",
                  {{"reason", printable(remeasured.error().message)}}));
  const bool printed =
      print(options.json ? resultJson(plan, report).dump() + '\n' : resultText(plan, report, wording));
  if (wasInterrupted() && !report.isComplete(plan)) return interrupted;
  return printed && remeasured && report.isComplete(plan) && plan.refused.empty() ? done : failed;
}

}  // namespace

CleanupContext cleanupContext(const Wording& wording) {
  CleanupContext context{.guard = DeletionGuard{wording.home, UserFolders::personal()},
                         .data = UserFolders::data(),
                         .locale = wording.locale,
                         .freeBytes = freeBytes};
  ToolRuns{Shell{}}.serve(context);
  return context;
}

std::expected<void, Error> remeasureInNewestScan(const std::vector<std::string>& paths) {
  const SnapshotStore store = SnapshotStore::standard();
  auto scan = storedScan(store, "");
  if (!scan) return {};
  bool isChanged = false;
  for (const std::string& path : paths) {
    if (scan->nodeAt(path) != nullptr)
      isChanged |= putInto(*scan, measureAgain(path, scan->minNodeSize, scan->coverage.excludes));
  }
  if (!isChanged) return {};
  const auto saved = SnapshotWriter{store}.save(*scan, 1);
  if (!saved) return std::unexpected(saved.error());
  return {};
}

int runClean(CleanKind kind, const CleanOptions& options) {
  const Wording wording{.home = UserFolders::home(), .locale = userLocale()};
  const CleanupContext context = cleanupContext(wording);
  auto proposal = Proposer{options, context}.propose(kind);
  if (!proposal) {
    complain(printable(proposal.error()));
    return failed;
  }
  CleanupPlan& plan = proposal->plan;
  measurePlan(plan);
  if (options.dryRun && options.json) return print(planJson(plan).dump() + '\n') ? done : failed;
  if (plan.steps.empty()) {
    for (const std::string& line : proposal->leftOut)
      complain(i18n("left out: {item}", {{"item", printable(line)}}));
    return print(options.json ? planJson(plan).dump() + '\n' : proposal->nothingToDo + '\n') ? done : failed;
  }
  if (options.dryRun) return print(planText(plan, proposal->leftOut, wording)) ? done : failed;
  if (!confirmed(*proposal, options, wording)) return failed;
  return carryOut(plan, options, context, wording);
}

}  // namespace spacemint::ctl
