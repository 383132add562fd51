#include "core/scan/ScanPlan.h"

#include "core/base/Unicode.h"

namespace spacemint {

namespace {

// Why `earlier` can be no seed; empty where it can.
std::string_view obstacle(const ScanPlan::Arguments& arguments) {
  if (!arguments.mayReuse) return "that was asked for";
  if (!arguments.earlier) return "there is no earlier scan";
  const Snapshot& earlier = *arguments.earlier;
  if (!canonicallyEqual(earlier.rootPath(), arguments.root)) return "the last scan was of another folder";
  if (earlier.minNodeSize != arguments.minNodeSize) return "the last scan kept other sizes apart";
  if (!earlier.eventID) return "nothing recorded changes at the last scan";
  // A clock that was wrong would put off the next full scan for as long.
  if (earlier.fullScanDate > arguments.now) return "the last full scan has a date to come";
  if (!earlier.canSeedIncrementalScan({.root = arguments.root,
                                       .minNodeSize = arguments.minNodeSize,
                                       .now = arguments.now,
                                       .fullScanInterval = fullScanInterval})) {
    return earlier.fullScanDate && earlier.root.fileCount > 0 && earlier.format == Snapshot::currentFormat
               ? "the last full scan is three days old"
               : "the last scan is no basis for another";
  }
  return {};
}

}  // namespace

ScanPlan ScanPlan::make(const ChangeLog& log, Arguments arguments) {
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

}  // namespace spacemint
