#pragma once

#include "core/scan/DiskScanner.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace spacemint::ctl {

/// The text of the progress line: files, bytes, and, where the expected bytes are known, the percentage and
/// the remaining time.
std::string progressText(const DiskScanner::Progress& progress, std::optional<Bytes> expected,
                         std::chrono::duration<double> elapsed, const std::string& locale);

/// A line on the terminal that is rewritten about ten times a second and erased with the object. Prints
/// nothing unless `wanted`.
class ProgressLine {
 public:
  /// Whether standard error is a terminal.
  static bool canBeSeen();

  ProgressLine(bool wanted, std::optional<Bytes> expected, std::string locale);
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void show(const DiskScanner::Progress& progress);
  /// Shows what `text` returns, which is called only when the line is due to be written.
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
