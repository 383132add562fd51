#include "Spacemint/views/Overview.h"

#include "Spacemint/views/FolderText.h"
#include "Spacemint/views/ShownText.h"
#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/RelativeTime.h"
#include "core/base/TextList.h"
#include "core/base/Translation.h"
#include "core/tree/Paths.h"
#include "core/wording/FindingText.h"

#include <QDateTime>
#include <QLocale>
#include <QTimeZone>

#include <algorithm>
#include <limits>
#include <ranges>

namespace spacemint {

namespace {

constexpr std::size_t growingShown = 3;

// If more folders grew, the rest is shown on demand.
constexpr int growthShown = 5;

// The text in place of the list of what grew; empty when there is a list.
std::string growthText(const Findings& findings, const std::string& locale) {
  if (findings.baselineUnavailable) return i18n("The earlier scan couldn't be read. Pick another one above.");
  if (findings.baselineLeftOutOthers) return i18n(FindingText::otherExcludes);
  if (!findings.spaceChange) return i18n(FindingText::nothingToCompare);
  return findings.growth.empty() ? FindingText::nothingGrew(Findings::growthMinimum, locale) : "";
}

// Empty when there is no earlier scan to compare with. The free space is that of now, as in the figure above.
std::string freeChangeText(const Findings& findings, const UiHost& host) {
  if (findings.baselineUnavailable || !findings.spaceChange) return "";
  SpaceChange change = *findings.spaceChange;
  const auto& volume = host.model.volume().status();
  const SharedSnapshot& scan = host.model.history().snapshot();
  if (volume && scan && scan->volumeTotal == volume->total) change.freeNow = volume->free;
  return FindingText::freeChange(change, host.home, host.locale);
}

// "1 day ago · 08:15"
QString baselineTitle(Date date, Date now, const std::string& locale) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(date).time_since_epoch().count();
  const QTime time = QDateTime::fromSecsSinceEpoch(seconds, QTimeZone::systemTimeZone()).time();
  const QString shown = QLocale{ShownText::plain(locale)}.toString(time, QLocale::ShortFormat);
  return ShownText::plain(
      facts({RelativeTime::string(date, now, ShownText::wordsLocale), shown.toStdString()}));
}

}  // namespace

Overview::Overview(const UiHost& host)
    : host_(host),
      growing_(host),
      growth_(host),
      firstGrowth_(host),
      changes_(host, [this] { update(); }),
      trash_(host),
      backups_(host),
      suggestions_(host) {
  AppModel& model = host_.model;
  connect(&model.currentFindings(), &CurrentFindings::updated, this, &Overview::update);
  connect(&model.growing(), &GrowthNow::changed, this, &Overview::updateGrowing);
  connect(&model, &AppModel::hasFullDiskAccessChanged, this, &Overview::update);
  connect(&model.history(), &ScanHistory::entriesChanged, this, &Overview::updateBaselines);
  connect(&model.history(), &ScanHistory::baselineEntryChanged, this, &Overview::updateBaselines);
  // The texts contain ages, which grow.
  connect(&model, &AppModel::statusChanged, this, &Overview::update);
  connect(&model, &AppModel::statusChanged, this, &Overview::updateBaselines);
  update();
  updateGrowing();
  updateBaselines();
}

QString Overview::accessTitle() const {
  return ShownText::plain(i18n(PlatformWords::accessIsLimited));
}

QString Overview::accessLine() const {
  return ShownText::plain(i18n("Spacemint can't see your whole disk, so some sizes may be out of date."));
}

QString Overview::growthToggle(int count, bool showsAll) const {
  if (count <= growthShown) return {};
  return ShownText::plain(showsAll
                              ? i18n("Show less")
                              : i18n("Show all {count}", {{"count", groupedNumber(count, host_.locale)}}));
}

void Overview::chooseBaseline(int index) {
  if (index < 0 || index >= static_cast<int>(entries_.size())) return;
  host_.model.history().setBaselineEntry(entries_[static_cast<std::size_t>(index)]);
}

void Overview::openAccessSettings() const {
  host_.desktop.opener.openSettings(Opener::SettingsPage::fullDiskAccess);
}

void Overview::update() {
  const Findings& findings = host_.model.findings();
  // While the analysis of a scan runs, an empty finding does not mean that there is nothing.
  const bool isReady = host_.model.currentFindings().isReady();
  freeChange_ = ShownText::sentence(freeChangeText(findings, host_));
  changes_.update();
  firstGrowth_.assign(changes_.items(growthShown));
  growth_.assign(changes_.items(std::numeric_limits<std::size_t>::max()),
                 {.text = isReady ? growthText(findings, host_.locale) : ""});
  trash_.assign(trashItems());
  backups_.assign(backupItems());
  const bool isClean =
      isReady && hasAccess() && trash_.count() == 0 && backups_.count() == 0 && findings.suggestions.empty();
  suggestions_.assign(suggestionItems(), {.text = isClean ? i18n(FindingText::nothingToClean) : ""});
  Q_EMIT changed();
}

void Overview::setSeen(bool isSeen) {
  isSeen_ = isSeen;
  host_.model.growing().setSeen(isSeen);
}

void Overview::updateGrowing() {
  const GrowthNow& growing = host_.model.growing();
  std::vector<ListItem> items;
  for (const GrowthLine& line : growing.lines() | std::views::take(growingShown)) {
    const std::string place = Paths::display(Paths::parent(line.path), host_.home);
    items.push_back({.id = line.path,
                     .path = line.path,
                     .size = line.figures.minute,
                     .isDirectory = line.isDirectory,
                     .title = FolderText::title(line.path, host_.model.scans().root(), host_.home),
                     .subtitle = facts({FindingText::pace(line, host_.locale), isolatedPath(place)}),
                     .sizeText = FindingText::inTheLastMinute(line, host_.locale),
                     .showsChevron = line.isDirectory});
  }
  growing_.assign(std::move(items));
  const auto until = growing.untilFull();
  fullIn_ = until && growing_.count() > 0
                // Translators: {full} is "full in 20 min at this pace".
                ? ShownText::sentence(i18n("Disk {full}", {{"full", FindingText::fullIn(*until)}}))
                : QString{};
  Q_EMIT growingChanged();
}

void Overview::updateBaselines() {
  const ScanHistory& history = host_.model.history();
  entries_ = history.entries();
  // The newest entry is the current scan itself.
  if (!entries_.empty()) entries_.erase(entries_.begin());
  QStringList baselines;
  for (const auto& entry : entries_) baselines << baselineTitle(entry.date, now(), host_.locale);
  const auto chosen =
      history.baselineEntry() ? std::ranges::find(entries_, *history.baselineEntry()) : entries_.end();
  const int index = chosen != entries_.end() ? static_cast<int>(chosen - entries_.begin()) : -1;
  if (baselines == baselines_ && index == baselineIndex_) return;
  baselines_ = std::move(baselines);
  baselineIndex_ = index;
  Q_EMIT baselinesChanged();
}

std::vector<ListItem> Overview::trashItems() const {
  const auto& trash = host_.model.findings().trash;
  if (!trash) return {};
  return {{.id = Cleanups::trashId,
           .path = trash->path,
           .size = trash->size,
           .isDirectory = true,
           .title = FindingText::trashTitle(*trash, host_.locale),
           .subtitle = FindingText::trashLine(*trash, host_.locale),
           .symbol = "trash",
           .buttonTitle = i18n("Empty Trash"),
           .busyTitle = i18n("Emptying…"),
           .onButton = [&model = host_.model] { model.confirmEmptyTrash(); }}};
}

std::vector<ListItem> Overview::backupItems() const {
  const auto backup = host_.model.oldBackup();
  if (!backup) return {};
  return {{.id = backup->path,
           .path = backup->path,
           .size = backup->size,
           .isDirectory = true,
           .title = FindingText::oldBackupTitle(*backup, host_.locale),
           .subtitle = FindingText::oldBackupLine(*backup, now(), ShownText::wordsLocale),
           .symbol = "iphone",
           .buttonTitle = i18n("Delete backup"),
           .busyTitle = i18n("Deleting…"),
           .onButton = [&model = host_.model, backup = *backup] { model.cleanups().ask(backup); }}};
}

std::vector<ListItem> Overview::suggestionItems() const {
  std::vector<ListItem> items;
  for (const Suggestion& suggestion : host_.model.findings().suggestions) {
    ListItem item{.id = suggestion.id,
                  .size = suggestion.size(),
                  .isDirectory = true,
                  .title = suggestion.title,
                  .subtitle = suggestion.advice,
                  .symbol = suggestion.symbol};
    if (suggestion.id == Cleanups::trashId) {
      item.buttonTitle = i18n("Empty Trash");
      item.busyTitle = i18n("Emptying…");
      item.onButton = [&model = host_.model] { model.confirmEmptyTrash(); };
    }
    if (suggestion.id == Suggestions::largeAndOld) {
      item.buttonTitle = i18n("Show files");
      item.onButton = [&model = host_.model] {
        model.setFileSearch(std::string{Suggestions::largeAndOldSearch});
        model.setTab(Tab::files);
      };
    }
    // A list of one would say the same again, so the row leads there itself.
    const bool leads = suggestion.locations.size() == 1 && item.onButton == nullptr;
    if (leads) {
      item.path = suggestion.locations.front().path;
      item.isDirectory = isDirectory(item.path);
      item.showsChevron = true;
      items.push_back(std::move(item));
      continue;
    }
    for (const auto& location : suggestion.locations) {
      item.parts.push_back({.id = location.path,
                            .path = location.path,
                            .size = location.size,
                            .isDirectory = isDirectory(location.path),
                            .subtitle = isolatedPath(Paths::display(location.path, host_.home)),
                            .showsChevron = true,
                            .canTrash = item.onButton == nullptr});
    }
    items.push_back(std::move(item));
  }
  return items;
}

bool Overview::isDirectory(const std::string& path) const {
  const SharedSnapshot& snapshot = host_.model.history().snapshot();
  const Node* node = snapshot ? snapshot->nodeAt(path) : nullptr;
  return node == nullptr || node->isDirectory;
}

}  // namespace spacemint
