#pragma once

#include "core/scan/DiskScanner.h"
#include "core/scan/FoundSoFar.h"
#include "core/scan/ScanTiming.h"

#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace spacemint::ctl {

/// The text of the progress line: files and bytes; if the expected bytes are known, also the percentage and
/// the remaining time.
std::string progressText(const DiskScanner::Progress& progress, const ScanTiming::Expected& expected,
                         std::chrono::duration<double> elapsed, const std::string& locale);

/// The rows of what a scan has found so far: size, bar and name, the largest first.
std::vector<std::string> foundRows(const FoundSoFar& found, const std::string& locale);

/// A line on standard error, with further rows below it, that is updated in place about ten times a second
/// and erased by the destructor. Prints nothing unless `wanted`. One thread at a time.
class ProgressLine {
 public:
  /// True if standard error is a terminal.
  static bool canBeSeen();

  ProgressLine(bool wanted, const ScanTiming::Expected& expected, std::string locale);
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void show(const DiskScanner::Progress& progress);
  /// Shows these rows below the line from its next update on, each cut to the width of the terminal.
  void setRows(std::vector<std::string> rows) { rows_ = std::move(rows); }
  /// Shows the result of `text`. Calls `text` only if the line is due for an update.
  void show(const std::function<std::string()>& text);

 private:
  using Clock = std::chrono::steady_clock;

  void draw(const std::string& text);
  void erase();

  bool shown_;
  std::vector<std::string> rows_;
  // How many rows below the line are on the screen.
  std::size_t drawn_ = 0;
  ScanTiming::Expected expected_;
  std::string locale_;
  Clock::time_point start_ = Clock::now();
  Clock::time_point last_;
};

}  // namespace spacemint::ctl
