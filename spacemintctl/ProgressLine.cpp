#include "spacemintctl/ProgressLine.h"

#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "spacemintctl/browse/Cells.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace spacemint::ctl {

namespace {

constexpr std::chrono::milliseconds pace{100};

std::string timeLeft(Seconds left) {
  const auto whole = static_cast<long long>(std::ceil(left.count()));
  if (whole < 60) return i18n("{count} s left", {{"count", numberText(whole)}});
  const long long minutes = (whole + 30) / 60;
  if (minutes < 60) return i18n("{count} min left", {{"count", numberText(minutes)}});
  return i18n("{hours} h {minutes} min left",
              {{"hours", numberText(minutes / 60)}, {"minutes", numberText(minutes % 60)}});
}

winsize terminalSize() {
  winsize size{};
  ioctl(STDERR_FILENO, TIOCGWINSZ, &size);
  return size;
}

}  // namespace

std::vector<std::string> foundRows(const FoundSoFar& found, const std::string& locale) {
  constexpr std::size_t sizeColumns = 9;
  constexpr double barColumns = 20;
  std::vector<std::string> rows;
  for (const FoundSoFar::Item& item : found.items) {
    const double share =
        static_cast<double>(item.size) / static_cast<double>(std::max<Bytes>(found.bytes, 1));
    std::string bar;
    for (int i = 0; i < static_cast<int>(std::lround(share * barColumns)); ++i) bar += "█";
    rows.push_back(fitted(ByteFormat::string(item.size, locale), sizeColumns, Side::right) + "  " +
                   fitted(bar, static_cast<std::size_t>(barColumns)) + "  " + shownText(item.name) +
                   (item.isDirectory ? "/" : "") + (item.isGrowing ? " …" : ""));
  }
  return rows;
}

std::string progressText(const DiskScanner::Progress& progress, const ScanTiming::Expected& expected,
                         std::chrono::duration<double> elapsed, const std::string& locale) {
  std::string text = counted(progress.files, "{count} file", "{count} files", locale) + ", " +
                     ByteFormat::string(progress.bytes, locale);
  const auto fraction = ScanTiming::fraction(progress.bytes, expected.bytes);
  if (!fraction) return text;
  text += ", " + i18n("{number} %", {{"number", numberText(static_cast<int>(*fraction * 100))}});
  const auto left = ScanTiming::remaining(progress, expected, elapsed);
  return left && *fraction < ScanTiming::highestFraction ? text + ", " + timeLeft(*left) : text;
}

ProgressLine::ProgressLine(bool wanted, const ScanTiming::Expected& expected, std::string locale)
    : shown_(wanted),
      expected_(expected),
      locale_(std::move(locale)) {}

bool ProgressLine::canBeSeen() {
  return isatty(STDERR_FILENO) == 1;
}

ProgressLine::~ProgressLine() {
  if (shown_) erase();
}

void ProgressLine::erase() {
  // To the end of the screen only where rows were drawn: what is below may be another program's.
  std::fputs(drawn_ > 0 ? "\r\x1b[J" : "\r\x1b[K", stderr);
  std::fflush(stderr);
  drawn_ = 0;
}

// Leaves the cursor at the beginning of the line, or at its end without rows.
void ProgressLine::draw(const std::string& text) {
  erase();
  std::fputs(text.c_str(), stderr);
  const winsize size = terminalSize();
  // What is wider or higher than the terminal could not be drawn over.
  drawn_ = std::min<std::size_t>(rows_.size(), size.ws_row > 1 ? size.ws_row - 1U : 0U);
  for (std::size_t i = 0; i < drawn_; ++i)
    std::fputs(("\n" + fitted(rows_[i], std::max<std::size_t>(size.ws_col, 2) - 1)).c_str(), stderr);
  if (drawn_ > 0) std::fprintf(stderr, "\x1b[%zuA\r", drawn_);
  std::fflush(stderr);
}

void ProgressLine::show(const DiskScanner::Progress& progress) {
  show([&] { return progressText(progress, expected_, Clock::now() - start_, locale_); });
}

void ProgressLine::show(const std::function<std::string()>& text) {
  const auto now = Clock::now();
  if (!shown_ || now - last_ < pace) return;
  last_ = now;
  draw(text());
}

}  // namespace spacemint::ctl
