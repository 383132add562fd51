#include "spacemintctl/Answer.h"

#include "core/base/ByteFormat.h"
#include "core/base/TextList.h"
#include "core/base/Translation.h"
#include "core/tree/TreeWalk.h"
#include "core/volume/SharedFiles.h"
#include "core/wording/FindingText.h"
#include "spacemintctl/Console.h"

#include <algorithm>
#include <functional>
#include <ranges>

namespace spacemint::ctl {

namespace {

constexpr std::size_t namedUnread = 5;

constexpr double explainingShare = 0.6;

bool isExplainedByASubfolder(const Node& folder) {
  return std::ranges::any_of(folder.children, [&](const Node& child) {
    return child.isDirectory &&
           static_cast<double>(child.size) >= explainingShare * static_cast<double>(folder.size);
  });
}

std::string shown(const std::string& path, const Wording& wording) {
  return printable(Paths::display(path, wording.home));
}

// Asks the disk.
std::string freedText(const FileItem& file, const Wording& wording) {
  const auto freed = SharedFiles::freesAtMost(file.path);
  return freed ? "  (" + FindingText::freesAtMost(*freed, wording.locale) + ")" : "";
}

std::string secondsText(Seconds duration) {
  const double seconds = duration.count();
  const int decimals = seconds < 0.1 ? 3 : seconds < 10 ? 1 : 0;
  return i18n("{number} s", {{"number", numberText(seconds, decimals)}});
}

}  // namespace

std::vector<FolderItem> largestFolders(const Node& root, std::size_t limit) {
  std::vector<FolderItem> folders;
  walkTree(root, [&](const std::string& path, const Node& node) {
    if (!node.isDirectory) return false;
    if (&node == &root || isExplainedByASubfolder(node)) return true;
    folders.push_back({path, &node});
    return false;
  });
  std::ranges::stable_sort(folders, std::greater{}, [](const FolderItem& item) { return item.node->size; });
  folders.resize(std::min(limit, folders.size()));
  return folders;
}

std::string folderTable(const std::vector<FolderItem>& folders, Bytes whole, const Wording& wording) {
  Table table;
  for (const FolderItem& item : folders) {
    table.add({ByteFormat::string(item.node->size, wording.locale), percentage(item.node->size, whole),
               counted(item.node->fileCount, "{count} file", "{count} files", wording.locale),
               shown(item.path, wording)});
  }
  return table.text();
}

std::string fileTable(const std::vector<FileItem>& files, const Wording& wording) {
  Table table;
  for (const FileItem& file : files) {
    table.add({ByteFormat::string(file.size, wording.locale),
               file.modified ? localTime(*file.modified).substr(0, 10) : "",
               shown(file.path, wording) + freedText(file, wording)});
  }
  return table.text();
}

// What the scan left out; at most `limit` lines.
std::string leftOutTable(const Snapshot& snapshot, std::size_t limit, const Wording& wording) {
  std::vector<LeftOut> items = snapshot.coverage.leftOut;
  std::erase_if(items, [](const LeftOut& item) { return item.kind == LeftOut::Kind::excluded; });
  Table table{0};
  const ExcludedSum excluded = snapshot.coverage.excludedBelow(snapshot.rootPath());
  if (excluded.items > 0) {
    const std::string what = FindingText::excludedItems(excluded, wording.locale);
    const std::string size = ByteFormat::string(excluded.size, wording.locale);
    table.add({i18n(FindingText::excludedTitle),
               excluded.unknown == excluded.items
                   ? what
                   : i18n("{size} in {items}", {{"size", size}, {"items", what}})});
  }
  for (const LeftOut& item : items | std::views::take(limit)) {
    table.add({FindingText::leftOutTitle(item, snapshot.date, wording.locale), shown(item.path, wording)});
  }
  if (items.size() > limit) table.add({restText(items.size() - limit), ""});
  return table.text();
}

std::string largestItems(const Snapshot& snapshot, std::size_t top, const Wording& wording) {
  const auto folders = largestFolders(snapshot.root, top);
  const auto files = snapshot.largestFiles(top);
  std::string text;
  if (!folders.empty())
    text += "\n" + i18n("Largest folders") + "\n" + folderTable(folders, snapshot.root.size, wording);
  if (!files.empty()) text += "\n" + i18n("Largest files") + "\n" + fileTable(files, wording);
  if (top > 0 && text.empty()) {
    text = "\n" +
           i18n("Nothing here is as large as {size}.",
                {{"size", ByteFormat::string(snapshot.minNodeSize, wording.locale)}}) +
           "\n";
  }
  return text;
}

std::string scanAnswer(const Snapshot& snapshot, std::size_t top, const Wording& wording,
                       const std::string& whyFull) {
  const bool isLowerBound = snapshot.measuredPart || snapshot.coverage.unread.folders > 0;
  const std::string size = FindingText::folderSize(snapshot.root.size, isLowerBound, wording.locale);
  std::string text = i18np("{path}: {size} in {count} file, measured in {time}",
                           "{path}: {size} in {count} files, measured in {time}", snapshot.fileCount,
                           {{"path", printable(snapshot.rootPath())},
                            {"size", size},
                            {"count", groupedNumber(snapshot.fileCount, wording.locale)},
                            {"time", secondsText(snapshot.duration)}}) +
                     '\n';
  text += (snapshot.measuredPart ? FindingText::stoppedScan(*snapshot.measuredPart)
           : whyFull.empty()     ? i18n("A rescan: what has not changed was taken from the last scan.")
                             : i18n("A full scan, because {reason}.", {{"reason", i18n(whyFull.c_str())}})) +
          '\n';
  if (snapshot.volumeTotal > 0) {
    text += i18n("Free on this volume: {free} of {total}",
                 {{"free", ByteFormat::string(snapshot.volumeFree, wording.locale)},
                  {"total", ByteFormat::string(snapshot.volumeTotal, wording.locale)}}) +
            '\n';
  }
  text += largestItems(snapshot, top, wording);
  if (!snapshot.coverage.leftOut.empty()) {
    constexpr std::size_t fewest = 5;
    text += "\n" + i18n("Not scanned") + "\n" + leftOutTable(snapshot, std::max(top, fewest), wording);
  }
  return text;
}

std::string withKind(std::string document, const std::string& whyFull) {
  document.pop_back();
  document += whyFull.empty() ? R"(,"scan":{"kind":"rescan"}})"
                              : R"(,"scan":{"kind":"full","because":")" + whyFull + R"("}})";
  return document;
}

std::string unreadNote(const Unread& unread, const Wording& wording) {
  if (unread.folders == 0 && unread.entries == 0) return "";
  std::vector<std::string> items;
  if (unread.folders > 0)
    items.push_back(counted(unread.folders, "{count} folder", "{count} folders", wording.locale));
  if (unread.entries > 0)
    items.push_back(counted(unread.entries, "{count} entry", "{count} entries", wording.locale));
  std::string text =
      i18n("{items} could not be read; sizes are at least what is shown", {{"items", listed(items)}});
  const std::size_t named = std::min(namedUnread, unread.paths.size());
  for (std::size_t i = 0; i < named; ++i) text += "\n  " + shown(unread.paths[i], wording);
  if (unread.folders + unread.entries > static_cast<std::int64_t>(named)) text += "\n  …";
  return text;
}

}  // namespace spacemint::ctl
