#include "Spacemint/views/ScanControl.h"

#include "Spacemint/views/ShownText.h"
#include "core/base/ByteFormat.h"
#include "core/base/RelativeTime.h"
#include "core/base/TextList.h"
#include "core/base/Translation.h"
#include "core/wording/FindingText.h"

#include <algorithm>
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
  // xgettext:no-c-format
  return i18n("Scanning · {percent}%", {{"percent", numberText(static_cast<int>(*fraction * 100))}});
}

std::string ScanText::detail(std::int64_t files, std::optional<Seconds> remaining,
                             const std::string& locale) {
  const std::string counted =
      i18np("{count} file", "{count} files", files, {{"count", groupedNumber(files, locale)}});
  return facts({counted, remaining ? remainingText(*remaining, locale) : ""});
}

std::string ScanText::scanned(const Scanned& scan) {
  if (const auto part = scan.snapshot.measuredPart) return FindingText::stoppedScan(*part);
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

std::vector<FoundSoFar::Item> ScanText::inOrder(std::vector<FoundSoFar::Item> items,
                                                const std::vector<std::string>& order) {
  std::ranges::stable_sort(items, {}, [&](const FoundSoFar::Item& item) {
    return std::ranges::find(order, item.name) - order.begin();
  });
  return items;
}

ScanControl::ScanControl(const UiHost& host) : host_(host) {
  connect(&scans(), &ScanLifecycle::foundChanged, this, &ScanControl::updateFound);
  connect(&scans(), &ScanLifecycle::progressChanged, this, &ScanControl::changed);
  connect(&host_.model.history(), &ScanHistory::snapshotChanged, this, &ScanControl::changed);
}

void ScanControl::updateFound() {
  constexpr std::chrono::seconds sortInterval{2};
  const FoundSoFar& found = scans().found();
  const auto now = host_.desktop.clock.steadyNow();
  if (found.items.empty()) sortedAt_.reset();
  if (!sortedAt_ || (!holdsOrder_ && now - *sortedAt_ >= sortInterval)) {
    sortedAt_ = now;
    order_.clear();
  }
  const auto items = ScanText::inOrder(found.items, order_);
  order_.clear();
  std::vector<ListItem> rows;
  for (const FoundSoFar::Item& item : items) {
    order_.push_back(item.name);
    rows.push_back({.id = item.name,
                    .path = Paths::join(scans().root(), item.name),
                    .size = item.size,
                    .isDirectory = item.isDirectory,
                    .fraction = ShownText::share(item.size, found.bytes),
                    .isGrowing = item.isGrowing});
  }
  found_.assign(std::move(rows));
  Q_EMIT foundChanged();
}

QString ScanControl::foundSize() const {
  return ShownText::plain(ByteFormat::string(scans().found().bytes, host_.locale));
}

void ScanControl::setSeen(QObject* view, bool isSeen) {
  if (isSeen) {
    views_.insert(view);
  } else {
    views_.erase(view);
  }
  host_.model.scans().setWatched(!views_.empty());
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

QString ScanControl::scannedLines() const {
  return scanned().replace(QStringLiteral(" · "), QStringLiteral("\n"));
}

QString ScanControl::scannedHelp() const {
  const SharedSnapshot& snapshot = host_.model.history().snapshot();
  return snapshot ? ShownText::plain(ScanText::scannedHelp(*snapshot, host_.locale)) : QString{};
}

}  // namespace spacemint
