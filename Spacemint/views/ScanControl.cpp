#include "Spacemint/views/ScanControl.h"

#include "Spacemint/views/ShownText.h"
#include "core/base/RelativeTime.h"

#include <cmath>

namespace spacemint {

namespace {

std::string remainingText(Seconds remaining) {
  if (remaining < std::chrono::minutes{1}) return "under a minute left";
  const auto minutes = std::llround(remaining.count() / 60);
  return "about " + std::to_string(minutes) + " min left";
}

// The application scans the home folder or the entire disk. A scan of another folder was started by hand.
std::string scope(const Snapshot& snapshot, std::string_view home) {
  const std::string& root = snapshot.rootPath();
  if (root == home) return "home folder";
  if (root == Paths::dataVolume || snapshot.components(home)) return "entire disk";
  return Paths::display(root, home);
}

}  // namespace

std::string ScanText::title(std::optional<double> fraction) {
  if (!fraction) return "Scanning…";
  return "Scanning · " + std::to_string(static_cast<int>(*fraction * 100)) + "%";
}

std::string ScanText::detail(std::int64_t files, std::optional<Seconds> remaining,
                             const std::string& locale) {
  const std::string counted = ShownText::counted(files, "file", locale);
  return remaining ? counted + " · " + remainingText(*remaining) : counted;
}

std::string ScanText::scanned(const Scanned& scan) {
  return (scan.updatedAt ? "Updated " : "Scanned ") +
         RelativeTime::string(scan.updatedAt.value_or(scan.snapshot.date), scan.now, ShownText::wordsLocale) +
         " · " + scope(scan.snapshot, scan.home);
}

std::string ScanText::scannedHelp(const Snapshot& snapshot, const std::string& locale) {
  return ShownText::counted(snapshot.fileCount, "file", locale) + ", scanned in " +
         std::to_string(static_cast<std::int64_t>(snapshot.duration.count())) + "s";
}

ScanControl::ScanControl(const UiHost& host) : host_(host) {
  connect(&scans(), &ScanLifecycle::progressChanged, this, &ScanControl::changed);
  connect(&host_.model.history(), &ScanHistory::snapshotChanged, this, &ScanControl::changed);
}

QString ScanControl::title() const {
  return ShownText::plain(ScanText::title(scans().fraction()));
}

QString ScanControl::detail() const {
  const auto& progress = scans().progress();
  if (!progress) return {};
  return ShownText::plain(ScanText::detail(progress->files, scans().timeRemaining(), host_.locale));
}

QString ScanControl::scanned() const {
  const ScanHistory& history = host_.model.history();
  if (!history.snapshot()) return {};
  return ShownText::plain(ScanText::scanned({.snapshot = *history.snapshot(),
                                             .now = host_.desktop.clock.now(),
                                             .home = host_.home,
                                             .updatedAt = history.updatedAt()}));
}

QString ScanControl::scannedHelp() const {
  const SharedSnapshot& snapshot = host_.model.history().snapshot();
  return snapshot ? ShownText::plain(ScanText::scannedHelp(*snapshot, host_.locale)) : QString{};
}

}  // namespace spacemint
