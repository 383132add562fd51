#include "spacemintctl/CleanCommand.h"

#include "Spacemint/tools/ToolRuns.h"
#include "core/cleanup/Cleanup.h"
#include "core/host/UserFolders.h"
#include "core/host/VolumeInfo.h"
#include "core/volume/VolumeStatus.h"
#include "core/wording/CleanupText.h"
#include "core/wording/FindingText.h"
#include "spacemintctl/CleanPlans.h"
#include "spacemintctl/CleanText.h"
#include "spacemintctl/Interrupt.h"
#include "spacemintctl/Question.h"
#include "spacemintctl/Remeasure.h"

#include <algorithm>

namespace spacemint::ctl {

namespace {

using Failure = std::optional<CleanupFailure>;

std::expected<CleanPlan, Error> makePlan(CleanKind kind, const CleanOptions& options,
                                         const CleanContext& context) {
  switch (kind) {
    case CleanKind::caches:
      return planCaches(options.ids, context);
    case CleanKind::trash:
      return planTrash(context);
    case CleanKind::backup:
      return planBackup(absolutePath(options.path), context);
    case CleanKind::worktree:
      return planWorktree(absolutePath(options.path), context);
    case CleanKind::path:
      return planPath(absolutePath(options.path), context);
  }
  return CleanPlan{};
}

Failure carryOut(const CleanStep& step, const CleanContext& context) {
  const auto removal = hostRemoval();
  switch (step.kind) {
    case CleanStep::Kind::deleteItem:
      return Cleanup::deleteItem({step.path, context.guard, *removal, step.identity});
    case CleanStep::Kind::emptyCache:
      return Cleanup::emptyCache({step.path, context.guard, *removal, step.identity});
    case CleanStep::Kind::emptyTrash:
      return Cleanup::deleteContents({step.path, context.guard, *removal, step.identity});
    case CleanStep::Kind::runCommand:
      return ToolRuns{context.shell}.clean(step.program, step.arguments);
  }
  return std::nullopt;
}

std::optional<Bytes> freeBytes() {
  const auto volume = VolumeStatus::current(startupVolume());
  return volume ? std::optional{volume->free} : std::nullopt;
}

// What was done of a plan: the steps that were begun, with what became of each.
struct Result {
  std::vector<Failure> failures = {};
  std::optional<Bytes> freeBefore = {};
  std::optional<Bytes> freeAfter = {};

  std::optional<Bytes> freed() const {
    if (!freeBefore || !freeAfter) return std::nullopt;
    return *freeAfter - *freeBefore;
  }
};

Result carryOut(const CleanPlan& plan, const CleanContext& context) {
  Result result{.freeBefore = freeBytes()};
  for (const CleanStep& step : plan.steps) {
    if (wasInterrupted()) break;
    result.failures.push_back(carryOut(step, context));
  }
  result.freeAfter = freeBytes();
  return result;
}

void sayFailures(const CleanPlan& plan, const Result& result) {
  for (std::size_t i = 0; i < result.failures.size(); ++i) {
    if (!result.failures[i]) continue;
    const std::string about = plan.steps.size() > 1 ? plan.steps[i].path + ": " : "";
    complain(printable(
        about + CleanupText::outcome({.label = {}, .failure = result.failures[i], .isTrash = plan.isTrash})));
  }
  if (result.failures.size() < plan.steps.size()) complain("interrupted; the rest was not begun");
}

std::string resultText(const CleanPlan& plan, const Result& result, const Wording& wording) {
  std::vector<std::string> labels;
  for (std::size_t i = 0; i < result.failures.size(); ++i) {
    const std::string& label = plan.steps[i].label;
    if (!result.failures[i] && std::ranges::find(labels, label) == labels.end()) labels.push_back(label);
  }
  std::string text;
  for (const std::string& label : labels) {
    // What was freed cannot be told apart where several things were done.
    const auto freed = labels.size() == 1 ? result.freed() : std::nullopt;
    text +=
        printable(CleanupText::outcome({.label = label, .freed = freed, .locale = wording.locale})) + '\n';
  }
  if (result.freed()) {
    text += FindingText::freeChange(*result.freeBefore, *result.freeAfter, wording.locale) + '\n';
  }
  return text;
}

Json resultJson(const CleanPlan& plan, const Result& result) {
  Json object{{"steps", Json::array()}};
  for (std::size_t i = 0; i < plan.steps.size(); ++i) {
    Json step = stepJson(plan.steps[i]);
    const bool begun = i < result.failures.size();
    step["done"] = begun && !result.failures[i];
    step["failure"] = begun ? failureJson(result.failures[i]) : Json(nullptr);
    object["steps"].push_back(std::move(step));
  }
  object["freed"] = result.freed() ? Json(*result.freed()) : Json(nullptr);
  object["free"] = result.freeAfter ? Json(*result.freeAfter) : Json(nullptr);
  return object;
}

// Whether the plan may be carried out, after it was shown and, unless that is known, asked about.
bool confirmed(const CleanPlan& plan, const CleanOptions& options, const Wording& wording) {
  const std::string text = planText(plan, wording);
  if (options.yes) return options.json || print(text);
  if (!canAsk()) {
    if (!options.json) print(text);
    complain("nothing was done: there is no terminal to ask on (--yes does not ask)");
    return false;
  }
  std::fputs(text.c_str(), stderr);
  if (ask(plan.question)) return true;
  complain("nothing was done");
  return false;
}

int finish(const CleanPlan& plan, const CleanOptions& options, const CleanContext& context) {
  noteInterrupts();
  const Result result = carryOut(plan, context);
  const auto remeasured = remeasureInNewestScan(plan.touched);
  sayFailures(plan, result);
  if (!remeasured) complain("couldn't save changes to the scan: " + printable(remeasured.error().message));
  const bool printed = print(options.json ? resultJson(plan, result).dump() + '\n'
                                          : resultText(plan, result, context.wording));
  if (result.failures.size() < plan.steps.size()) return interrupted;
  const bool allDone =
      std::ranges::none_of(result.failures, [](const Failure& each) { return each.has_value(); });
  return printed && remeasured && allDone ? done : failed;
}

}  // namespace

int runClean(CleanKind kind, const CleanOptions& options) {
  const Wording wording{.home = UserFolders::home(), .locale = userLocale()};
  const DeletionGuard guard{wording.home};
  const Shell shell;
  const CleanContext context{guard, shell, wording};
  const auto plan = makePlan(kind, options, context);
  if (!plan) {
    complain(printable(plan.error().message));
    return failed;
  }
  if (options.dryRun && options.json) return print(planJson(*plan).dump() + '\n') ? done : failed;
  if (plan->steps.empty()) {
    for (const std::string& line : plan->leftOut) complain("left out: " + printable(line));
    return print(options.json ? planJson(*plan).dump() + '\n' : plan->nothingToDo + '\n') ? done : failed;
  }
  if (options.dryRun) return print(planText(*plan, wording)) ? done : failed;
  if (!confirmed(*plan, options, wording)) return failed;
  return finish(*plan, options, context);
}

}  // namespace spacemint::ctl
