#include "spacemintctl/browse/Browser.h"

#include "core/base/ByteFormat.h"
#include "core/base/RelativeTime.h"
#include "core/base/Translation.h"
#include "core/tree/Paths.h"
#include "core/wording/FindingText.h"
#include "spacemintctl/CleanCommand.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/browse/BrowseText.h"

#include <algorithm>
#include <unordered_map>

namespace spacemint::ctl {

namespace {

// A folder that is being measured again shows the sizes of the last scan until the new ones are there.
void keepLastSizes(Node& soFar, const Node* last) {
  if (last == nullptr) return;
  std::unordered_map<std::string_view, const Node*> byName;
  for (const Node& child : last->children) byName.emplace(child.name, &child);
  for (Node& child : soFar.children) {
    const auto found = byName.find(child.name);
    if (child.size > 0 || found == byName.end()) continue;
    child.size = found->second->size;
    child.fileCount = found->second->fileCount;
  }
  soFar.size = last->size;
  soFar.fileCount = last->fileCount;
}

}  // namespace

Popup box(std::string title, std::vector<Paragraph> text, std::string keys) {
  return {.title = std::move(title), .text = std::move(text), .keys = std::move(keys)};
}

Browser::Browser(BrowserSetup setup, Inbox& inbox, const Wording& wording)
    : setup_(std::move(setup)),
      inbox_(inbox),
      context_(cleanupContext(wording)),
      worker_(inbox) {
  context_.trash = trash_.get();
  view_.home = setup_.importedFrom.empty() ? wording.home : "";
  view_.locale = wording.locale;
  view_.now = currentTime();
  if (setup_.scan) {
    hasScan_ = true;
    isStored_ = mayMeasure();
    tree_.setScan(std::move(*setup_.scan));
    setup_.scan.reset();
  }
  show(setup_.folder);
}

void Browser::start() {
  hasStarted_ = true;
  if (!mayMeasure()) return;
  if (hasScan_) loadUsualBaseline();
  startScan();
  listFolder();
}

void Browser::show(const std::string& path, const std::string& chosen) {
  page_ = Page::folder;
  ++lists_;
  folder_ = path;
  soFar_.reset();
  look_.clear();
  listing_.reset();
  if (scanning_) scanning_->show(path);
  view_.cursor = view_.first = 0;
  view_.rows.clear();
  updateRows();
  if (!chosen.empty()) setRows(std::move(view_.rows), chosen);
  listFolder();
}

void Browser::updateRows() {
  const Row* current = view_.current();
  const std::string chosen = current == nullptr || view_.cursor == 0 ? "" : current->path;
  BrowseTree::Folder folder = tree_.folder(folder_);
  Node merged;
  if (!folder.isComplete && soFar_) {
    merged = *soFar_;
    if (hasScan_) keepLastSizes(merged, folder.node);
    folder.node = &merged;
  }
  view_.title = Paths::display(folder_, view_.home);
  view_.figure = "";
  view_.emptyText =
      mayMeasure() && !folder.isComplete ? i18n("Measuring…") : i18n("Nothing is in this folder.");
  if (folder.node == nullptr) return setRows({}, "");
  view_.whole = folder.node->size;
  const bool isLowerBound = isPartial_ || (hasScan_ && tree_.scan().coverage.unread.isAtOrBelow(folder_));
  view_.figure = BrowseText::figure(FindingText::folderSize(folder.node->size, isLowerBound, view_.locale),
                                    folder.node->fileCount, view_.locale);
  const Node* before = baseline_ ? baseline_->nodeAt(folder_) : nullptr;
  view_.isUnfinished = !hasScan_;
  std::vector<Row> rows =
      rowsOf({.folder = *folder.node,
              .path = folder_,
              .before = before,
              .beforeMinimum = baseline_ ? std::optional{baseline_->minNodeSize} : std::nullopt,
              .isComplete = folder.isComplete,
              .scanned = tree_.scan().nodeAt(folder_),
              .coverage = hasScan_ ? &tree_.scan().coverage : nullptr,
              .look = look_});
  if (hidesDotNames_) std::erase_if(rows, [](const Row& row) { return row.name.starts_with('.'); });
  setRows(std::move(rows), chosen);
}

void Browser::setRows(std::vector<Row> rows, const std::string& chosen) {
  sortRows(rows, view_.order);
  view_.rows = std::move(rows);
  if (chosen.empty()) return;
  const auto found = std::ranges::find(view_.rows, chosen, &Row::path);
  if (found != view_.rows.end()) view_.cursor = static_cast<std::size_t>(found - view_.rows.begin());
}

void Browser::open() {
  const Row* row = view_.current();
  if (row == nullptr) return;
  if (row->kind == Row::Kind::leftOut) return showInfo();
  if (!row->isItem()) return;
  const Row chosen = *row;
  if (chosen.isDirectory) return show(chosen.path);
  if (page_ == Page::folder) return showInfo();
  show(Paths::parent(chosen.path), chosen.path);
}

void Browser::back() {
  if (page_ != Page::folder) return leavePage();
  if (folder_ == setup_.root) return say(i18n("This is the top of the scan."));
  show(Paths::parent(folder_), std::string{folder_});
}

void Browser::leavePage() {
  show(std::string{folder_}, chosenInFolder_);
}

void Browser::move(std::ptrdiff_t by) {
  const auto last = static_cast<std::ptrdiff_t>(view_.rows.size()) - 1;
  const auto cursor = static_cast<std::ptrdiff_t>(view_.cursor) + by;
  view_.cursor =
      static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(cursor, 0, std::max<std::ptrdiff_t>(last, 0)));
}

void Browser::orderBy(RowKey key) {
  if (key == RowKey::growth && !view_.showsGrowth)
    return say(i18n("Press b to choose a scan to compare with."));
  view_.order.isReversed = view_.order.key == key && !view_.order.isReversed;
  view_.order.key = key;
  setRows(std::move(view_.rows), "");
  view_.cursor = view_.first = 0;
}

std::string Browser::statusText() const {
  const Row* row = view_.current();
  if (page_ == Page::cleanable && row != nullptr) return row->note;
  std::string text;
  const auto add = [&](const std::string& clause) { text += (text.empty() ? "" : " · ") + clause; };
  if (!marked_.empty()) add(BrowseText::marks(marked_, view_.locale));
  const std::string age = hasScan_ ? RelativeTime::string(tree_.scan().date, view_.now, view_.locale) : "";
  const std::string progress = progress_.empty() ? "…" : progress_;
  if (!hasScan_) {
    add(i18n("Scanning: {progress}", {{"progress", progress}}));
  } else if (!mayMeasure()) {
    add(setup_.importedFrom);
  } else if (isScanning()) {
    add(i18n("Scanned {age}, being brought up to date: {progress}", {{"age", age}, {"progress", progress}}));
  } else {
    add(isPartial_ ? FindingText::stoppedScan(*tree_.scan().measuredPart)
                   : i18n("Scanned {age}", {{"age", age}}));
  }
  if (baseline_) add(i18n("growth since {date}", {{"date", localTime(baseline_->date)}}));
  if (hidesDotNames_ && page_ == Page::folder) add(i18n("without hidden files"));
  if (page_ == Page::found && tree_.scan().minNodeSize > 1)
    add(i18n("files and folders from {size} on",
             {{"size", ByteFormat::string(tree_.scan().minNodeSize, view_.locale)}}));
  if (hasScan_ && !setup_.whyReadOnly.empty()) add(i18n("read-only"));
  return text;
}

Screen Browser::screen(const ScreenSize& size) {
  view_.marked.clear();
  for (const auto& [path, _] : marked_) view_.marked.insert(path);
  view_.status = statusText();
  view_.footer = message_;
  if (message_.empty()) {
    view_.footer = BrowseText::keys(page_ == Page::folder, !setup_.whyReadOnly.empty());
    view_.footerStyle = Style::dim;
  }
  scrollToCursor(view_, size);
  return drawn(view_, size);
}

}  // namespace spacemint::ctl
