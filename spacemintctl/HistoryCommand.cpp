#include "spacemintctl/HistoryCommand.h"

#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "core/base/Unicode.h"
#include "core/history/SnapshotStore.h"
#include "core/host/UserFolders.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/StoredScan.h"

#include <nlohmann/json.hpp>

namespace spacemint::ctl {

namespace {

using Json = nlohmann::ordered_json;
using LoadedScan = std::expected<Snapshot, Error>;

Json jsonOf(const SnapshotStore::Entry& entry, const LoadedScan& scan) {
  Json object{{"date", universalTime(entry.date)}, {"file", withInvalidUtf8Replaced(entry.path)}};
  if (!scan) {
    object["error"] = withInvalidUtf8Replaced(scan.error().message);
    return object;
  }
  object["root"] = withInvalidUtf8Replaced(scan->rootPath());
  object["size"] = scan->root.size;
  object["fileCount"] = scan->fileCount;
  object["minNodeSize"] = scan->minNodeSize;
  object["volumeFree"] = scan->volumeFree;
  object["volumeTotal"] = scan->volumeTotal;
  return object;
}

std::vector<std::string> rowOf(const SnapshotStore::Entry& entry, const LoadedScan& scan) {
  const std::string locale = userLocale();
  if (!scan)
    return {localTime(entry.date), "", "",
            i18n("cannot be read: {reason}", {{"reason", printable(scan.error().message)}})};
  return {localTime(entry.date), ByteFormat::string(scan->root.size, locale),
          counted(scan->fileCount, "{count} file", "{count} files", locale),
          printable(Paths::display(scan->rootPath(), UserFolders::home()))};
}

}  // namespace

int runHistory(bool json) {
  Json list = Json::array();
  Table table;
  for (const auto& entry : storedScans()) {
    const LoadedScan scan = SnapshotStore{}.load(entry);
    if (json) {
      list.push_back(jsonOf(entry, scan));
    } else {
      table.add(rowOf(entry, scan));
    }
  }
  if (json) return print(list.dump() + '\n') ? done : failed;
  return print(table.empty() ? i18n("No scan in the history yet; \"spacemintctl scan\" makes one.") + "\n"
                             : table.text())
             ? done
             : failed;
}

}  // namespace spacemint::ctl
