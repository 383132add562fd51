#pragma once

#include "core/base/Date.h"

#include <string>
#include <string_view>
#include <vector>

namespace spacemint::ctl {

enum ExitCode : int { done = 0, failed = 1, wrongUsage = 2, interrupted = 130 };

/// The text with U+FFFD in place of control characters and invalid UTF-8, so that a file name cannot control
/// the terminal.
std::string printable(std::string_view text);

/// The current time of the system clock, in whole microseconds.
Date currentTime();

/// A date and time in the user's time zone, such as "2026-03-01 14:05:09". The first ten characters are the
/// day.
std::string localTime(Date date);
/// A date and time in UTC, for JSON: "2026-03-01T13:05:09Z".
std::string universalTime(Date date);

/// `part` as a rounded percentage of `whole`, such as "37 %"; empty if `whole` is below 1.
std::string percentage(std::int64_t part, std::int64_t whole);

/// "and 3 more": what a list leaves out.
std::string restText(std::size_t count);

/// A text table with aligned columns. The first `rightAligned` columns are right-aligned; the last column is
/// not padded.
class Table {
 public:
  explicit Table(std::size_t rightAligned = std::string::npos) : rightAligned_(rightAligned) {}

  void add(std::vector<std::string> row) { rows_.push_back(std::move(row)); }
  bool empty() const { return rows_.empty(); }
  std::string text() const;

 private:
  std::size_t rightAligned_;
  std::vector<std::vector<std::string>> rows_;
};

/// Writes to standard output. On failure, prints the reason on standard error and returns false.
bool print(const std::string& text);

/// Prints a line on standard error, with the program's name in front.
void complain(const std::string& message);

}  // namespace spacemint::ctl
