#include "Spacemint/views/Overview.h"

#include "Spacemint/views/FolderText.h"
#include "Spacemint/views/OverviewText.h"
#include "core/wording/FindingText.h"

#include <algorithm>

namespace spacemint {

namespace {

QString toQString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

Overview::Overview(const ItemActions& actions)
    : host_(actions.host()),
      growth_(actions),
      firstGrowth_(actions),
      trash_(actions),
      backups_(actions),
      suggestions_(actions) {
  AppModel& model = host_.model;
  connect(&model.currentFindings(), &CurrentFindings::updated, this, &Overview::update);
  connect(&model, &AppModel::hasFullDiskAccessChanged, this, &Overview::update);
  connect(&model.history(), &ScanHistory::entriesChanged, this, &Overview::updateBaselines);
  connect(&model.history(), &ScanHistory::baselineEntryChanged, this, &Overview::updateBaselines);
  // Texts grow old.
  connect(&model, &AppModel::statusChanged, this, &Overview::update);
  connect(&model, &AppModel::statusChanged, this, &Overview::updateBaselines);
  update();
  updateBaselines();
}

QString Overview::accessTitle() const {
  return toQString(OverviewText::accessTitle);
}

QString Overview::accessLine() const {
  return toQString(OverviewText::accessLine);
}

QString Overview::growthToggle(int count, bool showsAll) const {
  return QString::fromStdString(OverviewText::growthToggle(count, showsAll));
}

void Overview::chooseBaseline(int index) {
  if (index < 0 || index >= static_cast<int>(entries_.size())) return;
  host_.model.setBaselineEntry(entries_[static_cast<std::size_t>(index)]);
}

void Overview::openAccessSettings() const {
  host_.desktop.opener.openSettings(Opener::SettingsPage::fullDiskAccess);
}

void Overview::update() {
  const Findings& findings = host_.model.findings();
  const SharedSnapshot& snapshot = host_.model.history().snapshot();
  // Until a scan was looked through, what it lacks is not known.
  const bool isReady = host_.model.currentFindings().isReady();
  freeChange_ =
      snapshot
          ? QString::fromStdString(OverviewText::freeChange(findings, snapshot->volumeFree, host_.locale))
          : QString{};
  auto grown = growthRows();
  const auto first = std::min(grown.size(), std::size_t{OverviewText::growthShown});
  firstGrowth_.assign({grown.begin(), grown.begin() + static_cast<std::ptrdiff_t>(first)});
  growth_.assign(
      {.rows = std::move(grown), .text = isReady ? OverviewText::growth(findings, host_.locale) : ""});
  trash_.assign(trashRows());
  backups_.assign(backupRows());
  const bool isClean =
      isReady && hasAccess() && trash_.count() == 0 && backups_.count() == 0 && findings.suggestions.empty();
  suggestions_.assign(
      {.rows = suggestionRows(), .text = isClean ? std::string{FindingText::nothingToClean} : ""});
  Q_EMIT changed();
}

void Overview::updateBaselines() {
  const ScanHistory& history = host_.model.history();
  entries_ = history.entries();
  // The newest is the current scan itself.
  if (!entries_.empty()) entries_.erase(entries_.begin());
  QStringList baselines;
  for (const auto& entry : entries_) {
    baselines << QString::fromStdString(OverviewText::baseline(
        entry.date, {.now = now(), .zone = QTimeZone::systemTimeZone(), .locale = host_.locale}));
  }
  const auto chosen =
      history.baselineEntry() ? std::ranges::find(entries_, *history.baselineEntry()) : entries_.end();
  const int index = chosen != entries_.end() ? static_cast<int>(chosen - entries_.begin()) : -1;
  if (baselines == baselines_ && index == baselineIndex_) return;
  baselines_ = std::move(baselines);
  baselineIndex_ = index;
  Q_EMIT baselinesChanged();
}

std::vector<ItemRow> Overview::growthRows() const {
  const SharedSnapshot& snapshot = host_.model.history().snapshot();
  const std::string root = snapshot ? snapshot->rootPath() : "";
  std::vector<ItemRow> rows;
  for (const Growth& growth : host_.model.findings().growth) {
    rows.push_back({.id = growth.path,
                    .path = growth.path,
                    .size = growth.size,
                    .isDirectory = growth.isDirectory,
                    .title = FolderText::title(growth.path, root, host_.home),
                    .subtitle = Paths::display(growth.path, host_.home),
                    .sizeText = OverviewText::delta(growth, host_.locale),
                    .showsChevron = growth.isDirectory,
                    .canTrash = growth.path != root});
  }
  return rows;
}

std::vector<ItemRow> Overview::trashRows() const {
  const auto& trash = host_.model.findings().trash;
  if (!trash) return {};
  return {{.id = Cleanups::trashId,
           .path = trash->path,
           .size = trash->size,
           .isDirectory = true,
           .title = FindingText::trashTitle(*trash, host_.locale),
           .subtitle = FindingText::trashLine(*trash, host_.locale),
           .symbol = "trash",
           .buttonTitle = "Empty Trash",
           .busyTitle = "Emptying…",
           .onButton = [&model = host_.model] { model.confirmEmptyTrash(); }}};
}

std::vector<ItemRow> Overview::backupRows() const {
  const auto backup = host_.model.oldBackup();
  if (!backup) return {};
  return {{.id = backup->path,
           .path = backup->path,
           .size = backup->size,
           .isDirectory = true,
           .title = FindingText::oldBackupTitle(*backup, host_.locale),
           .subtitle = FindingText::oldBackupLine(*backup, now(), host_.locale),
           .symbol = "iphone",
           .buttonTitle = "Delete backup",
           .busyTitle = "Deleting…",
           .onButton = [&model = host_.model, backup = *backup] { model.confirm(backup); }}};
}

std::vector<ItemRow> Overview::suggestionRows() const {
  std::vector<ItemRow> rows;
  for (const Suggestion& suggestion : host_.model.findings().suggestions) {
    ItemRow row{.id = suggestion.id,
                .size = suggestion.size(),
                .isDirectory = true,
                .title = suggestion.title,
                .subtitle = suggestion.advice,
                .symbol = suggestion.symbol};
    if (suggestion.id == Cleanups::trashId) {
      row.buttonTitle = "Empty Trash";
      row.busyTitle = "Emptying…";
      row.onButton = [&model = host_.model] { model.confirmEmptyTrash(); };
    }
    for (const auto& location : suggestion.locations) {
      row.parts.push_back({.id = location.path,
                           .path = location.path,
                           .size = location.size,
                           .isDirectory = isDirectory(location.path),
                           .subtitle = Paths::display(location.path, host_.home),
                           .showsChevron = true,
                           .canTrash = row.onButton == nullptr});
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

bool Overview::isDirectory(const std::string& path) const {
  const SharedSnapshot& snapshot = host_.model.history().snapshot();
  const Node* node = snapshot ? snapshot->nodeAt(path) : nullptr;
  return node == nullptr || node->isDirectory;
}

}  // namespace spacemint
