#include "Spacemint/model/QuickLook.h"

#include "core/scan/ScanPlan.h"

#include <algorithm>
#include <utility>

namespace spacemint {

namespace {

// What a look needs on its thread.
struct Look {
  SharedSnapshot seed;
  EventJournal& journal;
  Date now;
  std::optional<VolumeStatus> volume;

  // The seed brought up to date; absent if it is up to date or cannot be updated in time.
  std::optional<Snapshot> run() const {
    using SteadyClock = std::chrono::steady_clock;
    const auto isOver = [end = SteadyClock::now() + QuickLook::longest] { return SteadyClock::now() >= end; };
    ScanPlan plan = ScanPlan::make(journal, {.root = seed->rootPath(),
                                             .minNodeSize = seed->minNodeSize,
                                             .now = now,
                                             .earlier = *seed,
                                             .timeout = QuickLook::longest,
                                             .shouldCancel = isOver,
                                             .updateLimit = QuickLook::folderLimit,
                                             .mayWalk = false});
    if (!plan.update || plan.update->changes.folders.empty()) return std::nullopt;
    auto result =
        plan.scan({.root = seed->rootPath(), .minNodeSize = seed->minNodeSize, .shouldCancel = isOver});
    if (!result || result->root == seed->root) return std::nullopt;
    return FinishedScan{
        .result = std::move(*result), .plan = plan, .minNodeSize = seed->minNodeSize, .volume = volume}
        .snapshot();
  }
};

}  // namespace

QuickLook::QuickLook(const Parts& parts, const AppContext& context, const Desktop& desktop)
    : parts_(parts),
      context_(context),
      desktop_(desktop) {
  connect(&parts_.findings, &CurrentFindings::updated, this, &QuickLook::finish);
}

bool QuickLook::canLook() const {
  const SharedSnapshot& scan = parts_.history.snapshot();
  return parts_.preferences.hasStarted() && scan && scan->eventID && !parts_.scans.isScanning() &&
         scan->rootPath() == parts_.scans.root();
}

bool QuickLook::isDue() {
  const auto& volume = parts_.volume.status();
  if (!volume) return false;
  mostFree_ = std::max(mostFree_.value_or(volume->free), volume->free);
  return saturatingSubtract(*mostFree_, volume->free) >= noticedLoss;
}

void QuickLook::look(std::function<void()> then) {
  const auto& volume = parts_.volume.status();
  mostFree_ = volume ? std::optional{volume->free} : std::nullopt;
  if (!canLook()) return then();
  waiting_.push_back(std::move(then));
  if (waiting_.size() > 1) return;
  desktop_.tasks.run(
      Tasks::Priority::userInitiated, this,
      [look = Look{.seed = parts_.history.snapshot(),
                   .journal = context_.journal,
                   .now = desktop_.clock.now(),
                   .volume = volume}] { return look.run(); },
      [this, revision = parts_.history.revision()](std::optional<Snapshot> updated) {
        take(std::move(updated), revision);
      });
}

// If the current scan changed meanwhile, the update is of an older one.
void QuickLook::take(std::optional<Snapshot> updated, std::int64_t revision) {
  if (!updated || parts_.history.revision() != revision) return finish();
  parts_.history.update(std::move(*updated));  // `finish` follows with the new findings
}

void QuickLook::finish() {
  for (const auto& then : std::exchange(waiting_, {})) then();
}

}  // namespace spacemint
