#include "core/scan/FinishedScan.h"

namespace spacemint {

Snapshot FinishedScan::snapshot() && {
  // What failed to be read now may be there the next time, without a change in between.
  const auto eventID = result.unread.hasFailures ? std::nullopt : plan.eventID;
  return {.date = end,
          .duration = end - start,
          .root = std::move(result.root),
          .fileCount = result.fileCount,
          .volumeFree = volume ? volume->free : 0,
          .volumeTotal = volume ? volume->total : 0,
          .minNodeSize = minNodeSize,
          .eventID = eventID,
          .fullScanDate = plan.fullScanDate};
}

}  // namespace spacemint
