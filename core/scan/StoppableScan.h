#pragma once

#include "core/scan/DiskScanner.h"

#include <functional>
#include <optional>
#include <utility>

namespace spacemint {

/// Lets a scan end before its end, and keeps what it has measured. Must outlive the scan; the scan's thread.
class StoppableScan {
 public:
  /// The scan ends at its next look after `shouldStop` returns true.
  explicit StoppableScan(std::function<bool()> shouldStop) : shouldStop_(std::move(shouldStop)) {}
  StoppableScan(const StoppableScan&) = delete;
  StoppableScan& operator=(const StoppableScan&) = delete;

  /// Wraps `look` and `shouldCancel`, so set these before.
  void watch(DiskScanner::Arguments& arguments);

  /// What a stopped scan has measured, which then returns nothing; absent if the scan was not stopped.
  std::optional<DiskScanner::Result> takePart() { return std::exchange(part_, std::nullopt); }

 private:
  std::function<bool()> shouldStop_;
  std::optional<DiskScanner::Result> part_;
};

}  // namespace spacemint
