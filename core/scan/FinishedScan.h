#pragma once

#include "core/scan/DiskScanner.h"
#include "core/scan/ScanPlan.h"
#include "core/tree/Snapshot.h"
#include "core/volume/VolumeStatus.h"

namespace spacemint {

/// A walk of the disk that came to its end, and what there is to know about it.
struct FinishedScan {
  DiskScanner::Result result;
  const ScanPlan& plan;
  Bytes minNodeSize = 0;
  Date start;
  Date end;
  std::optional<VolumeStatus> volume;

  /// The scan as it is stored.
  Snapshot snapshot() &&;
};

}  // namespace spacemint
