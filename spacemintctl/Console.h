#pragma once

#include "core/base/Date.h"

#include <string>
#include <string_view>
#include <vector>

namespace spacemint::ctl {

enum ExitCode : int { done = 0, failed = 1, wrongUsage = 2, interrupted = 130 };

/// Text that is safe on a terminal: control characters and bytes that are not UTF-8 in a file's name become
/// U+FFFD.
std::string printable(std::string_view text);

/// The time of the system's clock.
Date currentTime();

/// A date and time of the user's time zone, such as "2026-03-01 14:05:09"; its first ten characters are the
/// day.
std::string localTime(Date date);
/// The same in UTC as other programs read it: "2026-03-01T13:05:09Z".
std::string universalTime(Date date);

/// A whole percentage of `part` in `whole`, such as "37 %"; empty without a whole.
std::string percentage(std::int64_t part, std::int64_t whole);

/// Rows of text in columns of equal width. The first `rightAligned` columns are right-aligned, the last one
/// is as wide as its text.
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

/// Writes to standard output; false when that failed, which is then said on standard error.
bool print(const std::string& text);

/// One line on standard error under the program's name.
void complain(const std::string& message);

}  // namespace spacemint::ctl
