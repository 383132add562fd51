#include "core/analysis/DevTools.h"
#include "core/analysis/Search.h"
#include "core/analysis/Suggestions.h"
#include "core/base/AsciiText.h"
#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "core/cleanup/CleanupText.h"
#include "core/host/AtomicFile.h"
#include "core/host/FileStamp.h"
#include "core/host/UserFolders.h"
#include "core/places/SuggestionPlaces.h"
#include "core/wording/FindingText.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/TransferCommands.h"
#include "spacemintctl/browse/BrowseText.h"
#include "spacemintctl/browse/Browser.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace spacemint::ctl {

namespace {

constexpr std::size_t mostFound = 1'000;

}  // namespace

// Of a row of a list that is of several folders.
void Browser::addGrowth(Row& row) const {
  if (!baseline_) return;
  const Node* before = baseline_->nodeAt(row.path);
  row.growth = saturatingSubtract(row.size, before == nullptr ? 0 : before->size);
  row.isNew = before == nullptr;
}

void Browser::search(const std::string& text) {
  if (pieces(text, ' ').empty()) return;
  const auto query = parseSearch(text);
  if (!query) return say(query.error().message, true);
  say(i18n("Searching…"));
  worker_.run([this, text, list = ++lists_, query = *query, scan = tree_.share(), now = view_.now,
               home = view_.home] {
    static const FileKinds kinds = FileKinds::ofThisSystem();
    std::size_t count = 0;
    auto rows = std::make_shared<std::vector<Row>>();
    for (const auto& [path, node] : spacemint::search(*scan, query, kinds, now, mostFound, &count)) {
      rows->push_back({.path = path,
                       .name = Paths::display(path, home),
                       .size = node->size,
                       .fileCount = node->isDirectory ? node->fileCount : 1,
                       .modified = node->modified,
                       .isDirectory = node->isDirectory});
    }
    return [this, text, list, rows, count] {
      if (list == lists_) showFound(text, std::move(*rows), count);
    };
  });
}

void Browser::showFound(const std::string& text, std::vector<Row> rows, std::size_t count) {
  if (rows.empty()) return say(FindingText::nothingFound(tree_.scan().minNodeSize, view_.locale));
  message_.clear();
  for (Row& row : rows) addGrowth(row);
  if (page_ == Page::folder) chosenInFolder_ = view_.current() == nullptr ? "" : view_.current()->path;
  page_ = Page::found;
  listing_.reset();
  view_.title = i18n("Found: {words}", {{"words", text}});
  const auto number = [&](std::size_t of) {
    return groupedNumber(static_cast<std::int64_t>(of), view_.locale);
  };
  view_.figure = count > rows.size() ? i18n("the {count} largest of {all}",
                                            {{"count", number(rows.size())}, {"all", number(count)}})
                                     : i18n("{count} found", {{"count", number(count)}});
  view_.whole = tree_.scan().root.size;
  view_.cursor = view_.first = 0;
  setRows(std::move(rows), "");
}

void Browser::showCleanable() {
  if (!hasScan_ || isPartial_)
    return say(i18n("Let the scan end first; then this shows what is safe to clean."));
  if (!mayMeasure()) return say(i18n("This scan was imported: nothing of it can be cleaned here."));
  const Snapshot& scan = tree_.scan();
  std::vector<Row> rows;
  cleanups_.clear();
  const auto add = [&](const std::string& path, Bytes size, const std::string& name, std::string note) {
    if (!isAtOrBelow(path, folder_)) return;
    rows.push_back({.path = path,
                    .name = name + " – " + Paths::display(path, view_.home),
                    .size = size,
                    .isDirectory = true,
                    .note = std::move(note)});
    if (const Node* node = scan.nodeAt(path)) rows.back().fileCount = node->fileCount;
    addGrowth(rows.back());
  };
  for (const auto& found :
       DevTools::cleanups({.in = scan, .home = view_.home, .environment = UserFolders::environment})) {
    add(found.path, found.size, std::string{found.target->title},
        CleanupText::cacheNote(*found.target, Paths::display(found.path, view_.home)));
    cleanups_.emplace(found.path, found);
  }
  if (const auto trash =
          Suggestions::trash({.in = scan, .home = view_.home, .environment = UserFolders::environment})) {
    add(trash->path, trash->size, i18n("Trash"),
        i18n("Deletes everything for good, including hidden items."));
    cleanups_.emplace(trash->path, EmptyTrashRequest{.place = trashPlace(&scan, view_.home, context_.data),
                                                     .size = trash->size});
  }
  for (const Suggestion& each :
       Suggestions::find({.in = scan, .home = view_.home, .environment = UserFolders::environment})) {
    if (std::ranges::find(projectFolders, each.id, &ProjectFolder::id) == projectFolders.end()) continue;
    for (const auto& location : each.locations) add(location.path, location.size, each.title, each.advice);
  }
  if (rows.empty()) return say(i18n("Nothing in this folder is known to be safe to clean."));
  if (page_ == Page::folder) chosenInFolder_ = view_.current() == nullptr ? "" : view_.current()->path;
  page_ = Page::cleanable;
  ++lists_;
  listing_.reset();
  Bytes sum = 0;
  for (const Row& row : rows) sum = saturatingAdd(sum, row.size);
  view_.title = i18n("Safe to clean in {path}", {{"path", Paths::display(folder_, view_.home)}});
  view_.figure = ByteFormat::string(sum, view_.locale);
  view_.whole = sum;
  view_.cursor = view_.first = 0;
  setRows(std::move(rows), "");
}

std::string Browser::aboutFolder(const std::string& path) const {
  if (!hasScan_ || !mayMeasure()) return "";
  for (const auto& found : DevTools::cleanups(
           {.in = tree_.scan(), .home = view_.home, .environment = UserFolders::environment})) {
    if (found.path == path) return BrowseText::about(found.target->title, found.target->advice);
  }
  for (const Suggestion& each :
       Suggestions::find({.in = tree_.scan(), .home = view_.home, .environment = UserFolders::environment})) {
    for (const auto& location : each.locations) {
      if (location.path == path) return BrowseText::about(each.title, each.advice);
    }
  }
  return "";
}

void Browser::showInfo() {
  const Row* row = view_.current();
  if (row == nullptr || (!row->isItem() && row->kind != Row::Kind::leftOut)) return;
  const std::string before = baseline_ ? localTime(baseline_->date) : "";
  ask(box(i18n("Info"), BrowseText::info(*row, view_, before, row->isDirectory ? aboutFolder(row->path) : ""),
          i18n("any key: back")),
      {});
}

void Browser::mark() {
  const Row* row = view_.current();
  if (row == nullptr || !row->isItem()) return;
  if (marked_.erase(row->path) == 0) marked_.emplace(row->path, row->size);
  move(1);
}

void Browser::exportTo(const std::string& file) {
  if (file.empty()) return;
  const std::string path = file.starts_with("~/") ? Paths::join(UserFolders::home(), file.substr(2)) : file;
  if (mayExist(path))
    return say(i18n("{file} is there already; nothing was written.", {{"file", file}}), true);
  const auto written = writeFileAtomically(path, exported(tree_.scan()));
  if (written)
    return say(
        i18n("Exported to {file}. \"spacemintctl browse --import\" and ncdu open it.", {{"file", file}}));
  say(i18n("Couldn't write the export: {reason}", {{"reason", written.error().message}}), true);
}

}  // namespace spacemint::ctl
