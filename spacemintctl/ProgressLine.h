#pragma once

#include "core/scan/DiskScanner.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace spacemint::ctl {

/// The text of the progress line: files and bytes; if `expected` (bytes) is known, also the percentage and
/// the remaining time.
std::string progressText(const DiskScanner::Progress& progress, std::optional<Bytes> expected,
                         std::chrono::duration<double> elapsed, const std::string& locale);

/// A line on standard error that is updated about ten times a second and erased by the destructor. Prints
/// nothing unless `wanted`. One thread at a time.
class ProgressLine {
 public:
  /// True if standard error is a terminal.
  static bool canBeSeen();

  ProgressLine(bool wanted, std::optional<Bytes> expected, std::string locale);
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void show(const DiskScanner::Progress& progress);
  /// Shows the result of `text`. Calls `text` only if the line is due for an update.
  void show(const std::function<std::string()>& text);

 private:
  using Clock = std::chrono::steady_clock;

  bool shown_;
  std::optional<Bytes> expected_;
  std::string locale_;
  Clock::time_point start_ = Clock::now();
  Clock::time_point last_;
};

}  // namespace spacemint::ctl
