#include "spacemintctl/ListCommands.h"

#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "core/base/Unicode.h"
#include "core/host/UserFolders.h"
#include "core/volume/SharedFiles.h"
#include "core/wording/FindingText.h"
#include "spacemintctl/Answer.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/Section.h"
#include "spacemintctl/StoredScan.h"

#include <algorithm>
#include <filesystem>
#include <functional>

namespace spacemint::ctl {

namespace {

Wording userWording() {
  return {.home = UserFolders::home(), .locale = userLocale()};
}

void setModified(Json& object, std::optional<Date> modified) {
  if (modified) object["modified"] = universalTime(*modified);
}

Json jsonOf(const FileItem& file) {
  Json object{{"path", withInvalidUtf8Replaced(file.path)}, {"size", file.size}};
  setModified(object, file.modified);
  if (const auto freed = SharedFiles::freesAtMost(file.path)) object["freesAtMost"] = *freed;
  return object;
}

// A node without its children.
Json jsonOf(const std::string& name, const Node& node) {
  Json object{
      {"name", withInvalidUtf8Replaced(name)}, {"size", node.size}, {"isDirectory", node.isDirectory}};
  if (node.isDirectory) object["fileCount"] = node.fileCount;
  setModified(object, node.modified);
  return object;
}

Json folderJson(const std::string& path, const Node& folder) {
  Json object = jsonOf(path, folder);
  object["unlistedSize"] = folder.unlistedSize();
  object["children"] = Json::array();
  for (const Node& child : folder.children) object["children"].push_back(jsonOf(child.name, child));
  return object;
}

std::int64_t filesIn(const Node& node) {
  return node.isDirectory ? node.fileCount : 1;
}

// The last column before the name is the number of files if the order is by it.
std::string folderText(const std::string& path, const Node& folder, const ExcludedSum& excluded,
                       const ListOptions& options, const Wording& wording) {
  std::size_t top = options.top;
  const std::string text = printable(Paths::display(path, wording.home)) + ": " +
                           ByteFormat::string(folder.size, wording.locale) + '\n';
  Table table;
  for (const Node& child : folder.children) {
    if (top-- == 0) {
      table.add({"", "", i18n("… and more; --top shows them")});
      break;
    }
    table.add({ByteFormat::string(child.size, wording.locale),
               options.byCount ? counted(filesIn(child), "{count} file", "{count} files", wording.locale)
                               : percentage(child.size, folder.size),
               printable(child.name) + (child.isDirectory ? "/" : "")});
  }
  if (folder.unlistedSize() > 0) {
    table.add({ByteFormat::string(folder.unlistedSize(), wording.locale),
               options.byCount ? "" : percentage(folder.unlistedSize(), folder.size),
               i18n("(smaller files and folders)")});
  }
  if (excluded.items > 0) {
    table.add({excluded.unknown == excluded.items ? "" : ByteFormat::string(excluded.size, wording.locale),
               "", "(" + i18n(FindingText::excludedTitle) + ")"});
  }
  return text + table.text();
}

}  // namespace

std::expected<Findings, Error> largestFolderFindings(const Scene& scene) {
  const auto folders = largestFolders(scene.snapshot.root, scene.top);
  Json list = Json::array();
  for (const FolderItem& item : folders) {
    list.push_back(
        {{"path", jsonText(item.path)}, {"size", item.node->size}, {"fileCount", item.node->fileCount}});
  }
  return Findings{.text = folderTable(folders, scene.snapshot.root.size, scene.wording),
                  .json = std::move(list),
                  .isWorthReporting = !folders.empty()};
}

std::expected<Findings, Error> largestFileFindings(const Scene& scene) {
  const auto files = scene.snapshot.largestFiles(scene.top);
  Json list = Json::array();
  for (const FileItem& file : files) list.push_back(jsonOf(file));
  return Findings{
      .text = fileTable(files, scene.wording), .json = std::move(list), .isWorthReporting = !files.empty()};
}

int runFiles(const ListOptions& options) {
  const auto snapshot = storedScanOrComplaint(options.scan);
  if (!snapshot) return failed;
  const auto files = snapshot->largestFiles(options.top);
  if (!options.json) return print(fileTable(files, userWording())) ? done : failed;
  Json list = Json::array();
  for (const FileItem& file : files) list.push_back(jsonOf(file));
  return print(list.dump() + '\n') ? done : failed;
}

int runFolders(const ListOptions& options) {
  const auto snapshot = storedScanOrComplaint(options.scan);
  if (!snapshot) return failed;
  const std::string path = options.path.empty()
                               ? snapshot->rootPath()
                               : std::filesystem::absolute(options.path).lexically_normal().string();
  const Node* found = snapshot->nodeAt(path);
  if (found == nullptr || !found->isDirectory) {
    complain(i18n("{path}: no such folder in the scan of {date}, or the folder is too small to be stored",
                  {{"path", printable(path)}, {"date", localTime(snapshot->date)}}));
    return failed;
  }
  const std::string shown{Paths::withoutTrailingSlash(path)};
  Node folder = *found;
  if (options.byCount) std::ranges::stable_sort(folder.children, std::greater{}, filesIn);
  return print(options.json ? folderJson(shown, folder).dump() + '\n'
                            : folderText(shown, folder, snapshot->coverage.excludedBelow(shown), options,
                                         userWording()))
             ? done
             : failed;
}

}  // namespace spacemint::ctl
