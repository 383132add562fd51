#include "core/scan/ScanPlan.h"

#include "core/base/Log.h"
#include "core/base/Unicode.h"

namespace spacemint {

namespace {

// Why nothing of `earlier` can be reused; empty where something can.
std::string_view obstacle(const ScanPlan::Arguments& arguments) {
  if (!arguments.mayReuse) return "that was asked for";
  if (!arguments.earlier) return "there is no earlier scan";
  const Snapshot& earlier = *arguments.earlier;
  if (!canonicallyEqual(earlier.rootPath(), arguments.root)) return "the last scan was of another folder";
  if (earlier.minNodeSize != arguments.minNodeSize) return "the last scan used another --min-size";
  if (!earlier.eventID) return "nothing recorded changes at the last scan";
  // How long ago that was is not known.
  if (earlier.fullScanDate > arguments.now) return "the last full scan is dated in the future";
  if (!earlier.canSeedIncrementalScan({.root = arguments.root,
                                       .minNodeSize = arguments.minNodeSize,
                                       .now = arguments.now,
                                       .fullScanInterval = fullScanInterval})) {
    return earlier.fullScanDate && earlier.root.fileCount > 0 && earlier.format == Snapshot::currentFormat
               ? "the last full scan is three days old"
               : "the last scan is incomplete or from another version";
  }
  return {};
}

ScanPlan planned(const ChangeLog& log, ScanPlan::Arguments arguments) {
  ScanPlan plan{.fullScanDate = arguments.now};
  // Before anything is asked or measured, so that what happens from here on is in the next answer.
  const std::uint64_t id = log.currentEventID(arguments.root);
  if (id != 0) plan.eventID = id;
  plan.whyFull = obstacle(arguments);
  if (!plan.whyFull.empty()) return plan;

  auto changes = log.changes(
      {.since = *arguments.earlier->eventID, .under = arguments.root, .timeout = arguments.timeout});
  if (!changes) {
    plan.whyFull = textOf(changes.error());
    return plan;
  }
  plan.fullScanDate = *arguments.earlier->fullScanDate;
  plan.reuse = ChangeLog::reuse(std::move(*arguments.earlier), std::move(*changes));
  return plan;
}

}  // namespace

ScanPlan ScanPlan::make(const ChangeLog& changes, Arguments arguments) {
  const std::string root = arguments.root;
  ScanPlan plan = planned(changes, std::move(arguments));
  log(LogLevel::info, plan.whyFull.empty()
                          ? "the scan of " + root + " takes over what has not changed"
                          : "the scan of " + root + " walks everything, because " + plan.whyFull);
  return plan;
}

}  // namespace spacemint
