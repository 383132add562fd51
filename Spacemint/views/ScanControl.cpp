#include "Spacemint/views/ScanControl.h"

#include "Spacemint/views/ShownText.h"
#include "core/base/ByteFormat.h"
#include "core/base/RelativeTime.h"
#include "core/base/Translation.h"

#include <cmath>

namespace spacemint {

namespace {

std::string remainingText(Seconds remaining, const std::string& locale) {
  if (remaining < std::chrono::minutes{1}) return i18n("under a minute left");
  const auto minutes = std::llround(remaining.count() / 60);
  return i18n("about {minutes} min left", {{"minutes", groupedNumber(minutes, locale)}});
}

// The application scans the home folder or the entire disk. A scan of another folder was started by hand.
std::string scope(const Snapshot& snapshot, std::string_view home) {
  const std::string& root = snapshot.rootPath();
  if (root == home) return i18nc("what was scanned", "home folder");
  if (root == Paths::dataVolume || snapshot.components(home)) return i18nc("what was scanned", "entire disk");
  return Paths::display(root, home);
}

}  // namespace

std::string ScanText::title(std::optional<double> fraction) {
  if (!fraction) return i18n("Scanning…");
  return i18n("Scanning · {percent}%", {{"percent", std::to_string(static_cast<int>(*fraction * 100))}});
}

std::string ScanText::detail(std::int64_t files, std::optional<Seconds> remaining,
                             const std::string& locale) {
  const std::string counted =
      i18np("{count} file", "{count} files", files, {{"count", groupedNumber(files, locale)}});
  return remaining ? counted + " · " + remainingText(*remaining, locale) : counted;
}

std::string ScanText::scanned(const Scanned& scan) {
  const std::string age =
      RelativeTime::string(scan.updatedAt.value_or(scan.snapshot.date), scan.now, ShownText::wordsLocale);
  const std::string folder = scope(scan.snapshot, scan.home);
  return scan.updatedAt ? i18n("Updated {age} · {folder}", {{"age", age}, {"folder", folder}})
                        : i18n("Scanned {age} · {folder}", {{"age", age}, {"folder", folder}});
}

std::string ScanText::scannedHelp(const Snapshot& snapshot, const std::string& locale) {
  const auto seconds = static_cast<std::int64_t>(snapshot.duration.count());
  return i18np(
      "{count} file, scanned in {seconds}s", "{count} files, scanned in {seconds}s", snapshot.fileCount,
      {{"count", groupedNumber(snapshot.fileCount, locale)}, {"seconds", groupedNumber(seconds, locale)}});
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
