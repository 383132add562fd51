#pragma once

#include "core/scan/DiskScanner.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace spacemint::ctl {

/// What the progress line says: files, bytes, and, where the whole is known, how much is done and how long
/// the rest will take.
std::string progressText(const DiskScanner::Progress& progress, std::optional<Bytes> expected,
                         std::chrono::duration<double> elapsed, const std::string& locale);

/// One line on a terminal that is written over again and again, some ten times a second, and goes away with
/// the object. Nothing where it is not wanted.
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
