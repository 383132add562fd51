#include "Spacemint/model/CleanupRuns.h"

#include "core/wording/CleanupText.h"

namespace spacemint {

namespace {

using Reading = std::optional<VolumeStatus>;

std::optional<Bytes> freeOf(const Reading& reading) {
  return reading ? std::optional{reading->free} : std::nullopt;
}

}  // namespace

struct CleanupRuns::Run {
  CleanupJob job;
  std::optional<Bytes> freeBefore = {};
  CleanupJob::Failure failure = {};
};

bool CleanupRuns::setRunning(const std::string& id, bool isRunning) {
  if (isRunning && running_.contains(id)) return false;
  const bool isOther = isRunning ? running_.insert(id).second : running_.erase(id) > 0;
  if (isOther) Q_EMIT runningChanged();
  return true;
}

void CleanupRuns::perform(CleanupJob job) {
  if (!setRunning(job.id, true)) return;
  const auto run = std::make_shared<Run>(Run{.job = std::move(job)});
  const auto work = [run](const Reading& before) {
    run->freeBefore = freeOf(before);
    return run->job.work();
  };
  const auto measureAgain = [this, run](const CleanupJob::Failure& failure) {
    run->failure = failure;
    return remeasure(*run);
  };
  const auto waitForMore = [run](bool) {
    return run->job.then ? run->job.then() : QtFuture::makeReadyFuture(true);
  };
  const auto settle = [this](bool) { return desktop_.clock.wait(settlingTime, this); };
  const auto readAgain = [this, run](bool) {
    setRunning(run->job.id, false);
    readVolumeForAWhile();
    return parts_.volume.read();
  };
  const auto tell = [this, run](const Reading& after) { report(*run, freeOf(after)); };

  parts_.volume.read()
      .then(whileAlive(this, work))
      .unwrap()
      .then(whileAlive(this, measureAgain))
      .unwrap()
      .then(whileAlive(this, waitForMore))
      .unwrap()
      .then(whileAlive(this, settle))
      .unwrap()
      .then(whileAlive(this, readAgain))
      .unwrap()
      .then(whileAlive(this, tell));
}

QFuture<bool> CleanupRuns::remeasure(const Run& run) {
  std::vector<Remeasure::Request> requests;
  for (const std::string& path : run.job.remeasure) {
    requests.push_back({.path = path, .assumeEmptied = !run.failure && run.job.assumeEmptied});
  }
  return parts_.remeasure.runAll(std::move(requests));
}

void CleanupRuns::readVolumeForAWhile() {
  parts_.volume.refresh();
  for (const auto delay : laterReadings) {
    desktop_.clock.after(delay, this, [this] { parts_.volume.refresh(); });
  }
}

void CleanupRuns::report(const Run& run, std::optional<Bytes> freeAfter) {
  const bool isKnown = run.freeBefore && freeAfter;
  parts_.messages.show(
      CleanupText::outcome(
          {.label = run.job.label,
           .failure = run.failure,
           .freed = isKnown ? std::optional{saturatingSubtract(*freeAfter, *run.freeBefore)} : std::nullopt,
           .estimate = run.job.estimate,
           .isTrash = run.job.id == trashId,
           .locale = locale_}),
      actionFor(run.failure));
}

std::optional<MessageAction> CleanupRuns::actionFor(const CleanupJob::Failure& failure) {
  using Kind = CleanupFailure::Kind;
  if (!failure || failure->kind == Kind::refused || failure->kind == Kind::other) return std::nullopt;
  const auto page = failure->kind == Kind::needsFullDiskAccess ? Opener::SettingsPage::fullDiskAccess
                                                               : Opener::SettingsPage::automation;
  return MessageAction{.title = "Open Settings",
                       .perform = [&opener = desktop_.opener, page] { opener.openSettings(page); }};
}

}  // namespace spacemint
