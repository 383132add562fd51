#include "spacemintctl/FindCommand.h"

#include "core/analysis/Search.h"
#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "core/host/UserFolders.h"
#include "core/wording/FindingText.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/Section.h"
#include "spacemintctl/StoredScan.h"

#include <limits>

namespace spacemint::ctl {

namespace {

using Results = std::vector<SearchResult>;

// The shell has already taken the quotes of a word with spaces away.
std::string searchText(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) {
    const bool hasSpaces = word.contains(' ') && !word.contains('"');
    text += hasSpaces ? '"' + word + "\" " : word + ' ';
  }
  return text;
}

std::string jsonOf(const Results& results) {
  Json list = Json::array();
  for (const auto& [path, node] : results) {
    Json item{{"path", jsonText(path)}, {"size", node->size}, {"isDirectory", node->isDirectory}};
    if (node->isDirectory) item["fileCount"] = node->fileCount;
    if (node->modified) item["modified"] = universalTime(*node->modified);
    list.push_back(std::move(item));
  }
  return list.dump() + '\n';
}

std::string textOf(const Results& results, std::size_t count, Bytes minNodeSize) {
  const std::string locale = userLocale();
  if (results.empty()) return FindingText::nothingFound(minNodeSize, locale) + '\n';
  Table table{1};
  const std::string home = UserFolders::home();
  for (const auto& [path, node] : results) {
    table.add({ByteFormat::string(node->size, locale),
               node->modified ? localTime(*node->modified).substr(0, 10) : "",
               printable(Paths::display(path, home)) + (node->isDirectory ? "/" : "")});
  }
  addRest(table, count, results.size());
  return table.text();
}

std::string nullTerminated(const Results& results) {
  std::string text;
  for (const SearchResult& each : results) text += each.path + '\0';
  return text;
}

}  // namespace

int runFind(const FindOptions& options) {
  const std::string text = searchText(options.words);
  const auto query = parseSearch(text);
  if (!query) {
    complain(i18n("{problem}; \"spacemintctl find --help\" lists the words",
                  {{"problem", printable(query.error().message)}}));
    return wrongUsage;
  }
  const auto scan = storedScanOrComplaint(options.scan);
  if (!scan) return failed;
  std::size_t count = 0;
  const std::size_t limit = options.print0 ? std::numeric_limits<std::size_t>::max() : options.top;
  const Results results = search(*scan, *query, FileKinds::ofThisSystem(), currentTime(), limit, &count);
  const std::string answer = options.print0 ? nullTerminated(results)
                             : options.json ? jsonOf(results)
                                            : textOf(results, count, scan->minNodeSize);
  return print(answer) ? done : failed;
}

int runKinds(const ListOptions& options) {
  const auto scan = storedScanOrComplaint(options.scan);
  if (!scan) return failed;
  const auto totals = kindTotals(scan->root, FileKinds::ofThisSystem());
  const std::string locale = userLocale();
  Json list = Json::array();
  Table table{3};
  Bytes rest = scan->root.size;
  for (const KindTotal& total : totals) {
    const FileKindRow& row = rowOf(total.kind);
    rest = saturatingSubtract(rest, total.size);
    list.push_back({{"kind", row.word}, {"size", total.size}, {"fileCount", total.files}});
    table.add({ByteFormat::string(total.size, locale), percentage(total.size, scan->root.size),
               counted(total.files, "{count} file", "{count} files", locale), i18n(row.title)});
  }
  table.add({ByteFormat::string(rest, locale), percentage(rest, scan->root.size), "",
             scan->minNodeSize > 1 ? i18n("Files below {size}, and folders' own blocks",
                                          {{"size", ByteFormat::string(scan->minNodeSize, locale)}})
                                   : i18n("The folders themselves")});
  if (options.json) return print(Json{{"kinds", list}, {"rest", rest}}.dump() + '\n') ? done : failed;
  return print(table.text()) ? done : failed;
}

}  // namespace spacemint::ctl
