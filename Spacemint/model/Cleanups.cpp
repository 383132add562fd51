#include "Spacemint/model/Cleanups.h"

#include "core/base/Translation.h"
#include "core/cleanup/CleanupText.h"
#include "core/places/TrashPlace.h"

#include <algorithm>
#include <atomic>

namespace spacemint {

// The thread that removes and the main thread share `stopped`, `items` and `bytes`; all else belongs to the
// main thread.
struct Cleanups::Run {
  CleanupPlan plan;
  CleanupReport report = {};
  /// The progress message that is shown, so that no other message is replaced.
  std::optional<std::string> shown = {};
  /// The user closed the progress message.
  bool isHidden = false;
  /// All steps ended; what was removed is measured again.
  bool hasEnded = false;
  std::atomic<bool> stopped = false;
  std::atomic<std::int64_t> items = 0;
  std::atomic<Bytes> bytes = 0;

  bool movesToTrash() const {
    return std::ranges::all_of(
        plan.steps, [](const CleanupStep& step) { return step.kind == CleanupStep::Kind::moveToTrash; });
  }
};

Cleanups::Cleanups(const Parts& parts, const Desktop& desktop, CleanupContext context)
    : parts_(parts),
      desktop_(desktop),
      context_(std::move(context)) {}

Cleanups::~Cleanups() {
  for (const auto& [id, run] : runs_) run->stopped = true;
}

bool Cleanups::isRunning(const std::string& id) const {
  return std::ranges::any_of(runs_, [&](const auto& each) {
    const CleanupPlan& plan = each.second->plan;
    return plan.id == id || (!plan.items.empty() && std::ranges::count(plan.touched, id) > 0);
  });
}

void Cleanups::ask(CleanupRequest request) {
  const auto number = ++asked_;
  CleanupContext context = context_;
  context.scan = parts_.history.snapshot();
  const auto plan = [context = std::move(context), request, now = desktop_.clock.now()] {
    return planCleanup(request, context, now);
  };
  if (!std::holds_alternative<GitWorktree>(request)) return show(request, plan());
  desktop_.tasks.run(Tasks::Priority::userInitiated, this, plan, [this, request, number](auto planned) {
    if (number == asked_) show(request, std::move(planned));
  });
}

void Cleanups::show(const CleanupRequest& request, std::expected<CleanupPlan, CleanupFailure> plan) {
  if (!plan) return parts_.messages.show(CleanupText::refusalText(request, plan.error(), context_));
  confirmation_ = Confirmation{QUuid::createUuid(), std::move(*plan)};
  Q_EMIT confirmationChanged();
}

void Cleanups::dismiss() {
  if (std::exchange(confirmation_, std::nullopt)) Q_EMIT confirmationChanged();
}

void Cleanups::confirm(const QUuid& id) {
  if (!confirmation_ || confirmation_->id != id) return;
  CleanupPlan plan = std::move(confirmation_->plan);
  dismiss();
  perform(std::move(plan));
}

void Cleanups::perform(CleanupPlan plan) {
  if (isRunning(plan.id)) return;
  const auto touching = std::ranges::find_if(
      runs_, [&](const auto& each) { return Cleanup::touchEachOther(each.second->plan, plan); });
  if (touching != runs_.end()) {
    return parts_.messages.show(
        i18n("Spacemint didn't delete anything: another clean-up of the same items runs."));
  }
  if (plan.steps.empty()) return parts_.messages.show(i18n("There is no Trash."));
  const auto run = std::make_shared<Run>(std::move(plan));
  runs_.emplace(run->plan.id, run);
  Q_EMIT runningChanged();
  const auto watch = [run](const Removed& soFar) {
    run->items = soFar.items;
    run->bytes = soFar.bytes;
    return !run->stopped;
  };
  desktop_.tasks.run(
      Tasks::Priority::alone, this,
      [plan = run->plan, context = context_, watch] { return Cleanup::carryOut(plan, context, watch); },
      [this, run](CleanupReport report) {
        run->report = std::move(report);
        run->hasEnded = true;
        measureAgain(run);
      },
      "Spacemint clean");
  desktop_.clock.after(progressPace, this, [this, run] { showProgress(run); });
}

void Cleanups::stop(const std::string& id) {
  if (const auto run = runs_.find(id); run != runs_.end()) run->second->stopped = true;
}

void Cleanups::showProgress(const SharedRun& run) {
  if (run->hasEnded || run->stopped) return;
  desktop_.clock.after(progressPace, this, [this, run] { showProgress(run); });
  const auto& current = parts_.messages.message();
  if (current && current != run->shown) {
    // Wait until that message is gone.
    run->shown.reset();
    return;
  }
  if (run->shown && !current) run->isHidden = true;
  if (run->isHidden) return;
  run->shown = CleanupText::progressText(run->plan, {run->items, run->bytes}, context_.locale);
  if (run->shown == current) return;
  parts_.messages.show(*run->shown, MessageAction{.title = i18nc("button", "Stop"),
                                                  .perform = [this, id = run->plan.id] { stop(id); }});
}

void Cleanups::showHiddenProgress() {
  for (const auto& [id, run] : runs_) {
    run->shown.reset();
    run->isHidden = false;
  }
}

void Cleanups::measureAgain(const SharedRun& run) {
  const bool assumeEmptied = run->plan.expected && run->report.isComplete(run->plan);
  parts_.history.remeasure({.paths = run->plan.touched, .assumeEmptied = assumeEmptied},
                           [this, run] { refreshTools(run); });
}

void Cleanups::refreshTools(const SharedRun& run) {
  const std::string& program = run->plan.steps.front().command.program;
  const auto then = [this, run] { settle(run); };
  if (program == "docker") return parts_.developerTools.refreshDocker(then);
  if (program == "ollama") return parts_.developerTools.refreshOllama(then);
  then();
}

void Cleanups::settle(const SharedRun& run) {
  if (run->movesToTrash()) return finish(run, std::nullopt);
  const auto wait = run->plan.expected ? settlingTimeOfFileManager : settlingTime;
  desktop_.clock.after(wait, this, [this, run] {
    parts_.volume.read(this, [this, run](const std::optional<VolumeStatus>& reading) {
      finish(run, reading ? std::optional{reading->free} : std::nullopt);
    });
  });
}

void Cleanups::finish(const SharedRun& run, std::optional<Bytes> freeAfter) {
  Cleanup::settle(run->report, run->plan, freeAfter);
  runs_.erase(run->plan.id);
  Q_EMIT runningChanged();
  readVolumeForAWhile();
  const CleanupFailure* failure = run->report.failure();
  std::optional<MessageAction> action;
  // A sandbox hides items; a message that names an item says all there is to do.
  if (failure != nullptr && failure->kind == CleanupFailure::Kind::needsFullDiskAccess &&
      failure->message.empty()) {
    action = MessageAction{.title = i18n("Open Settings"), .perform = [&opener = desktop_.opener] {
                             opener.openSettings(Opener::SettingsPage::fullDiskAccess);
                           }};
  }
  parts_.messages.show(CleanupText::outcome(run->plan, run->report, context_), std::move(action));
}

void Cleanups::readVolumeForAWhile() {
  parts_.volume.refresh();
  for (const auto delay : laterReadings) {
    desktop_.clock.after(delay, this, [this] { parts_.volume.refresh(); });
  }
}

void Cleanups::refreshTrash() {
  const SharedSnapshot& scan = parts_.history.snapshot();
  if (!scan || isRefreshingTrash_) return;
  isRefreshingTrash_ = true;
  const TrashPlace trash = trashPlace(scan.get(), context_.guard.home(), context_.data);
  parts_.history.remeasure({.paths = {trash.folder}, .addIfMissing = true},
                           [this] { isRefreshingTrash_ = false; });
}

}  // namespace spacemint
