#include "spacemintctl/ProgressLine.h"

#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "core/scan/ScanTiming.h"

#include <unistd.h>

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

}  // namespace

std::string progressText(const DiskScanner::Progress& progress, std::optional<Bytes> expected,
                         std::chrono::duration<double> elapsed, const std::string& locale) {
  std::string text = counted(progress.files, "{count} file", "{count} files", locale) + ", " +
                     ByteFormat::string(progress.bytes, locale);
  const auto fraction = ScanTiming::fraction(progress.bytes, expected.value_or(0));
  if (!fraction) return text;
  text += ", " + i18n("{number} %", {{"number", numberText(static_cast<int>(*fraction * 100))}});
  const auto left = ScanTiming::remaining(fraction, elapsed);
  return left && *fraction < ScanTiming::highestFraction ? text + ", " + timeLeft(*left) : text;
}

ProgressLine::ProgressLine(bool wanted, std::optional<Bytes> expected, std::string locale)
    : shown_(wanted),
      expected_(expected),
      locale_(std::move(locale)) {}

bool ProgressLine::canBeSeen() {
  return isatty(STDERR_FILENO) == 1;
}

ProgressLine::~ProgressLine() {
  if (shown_) std::fputs("\r\x1b[K", stderr);
}

void ProgressLine::show(const DiskScanner::Progress& progress) {
  show([&] { return progressText(progress, expected_, Clock::now() - start_, locale_); });
}

void ProgressLine::show(const std::function<std::string()>& text) {
  const auto now = Clock::now();
  if (!shown_ || now - last_ < pace) return;
  last_ = now;
  std::fprintf(stderr, "\r\x1b[K%s", text().c_str());
  std::fflush(stderr);
}

}  // namespace spacemint::ctl
