#include "core/analysis/DeviceBackups.h"
#include "core/base/RelativeTime.h"
#include "core/base/Translation.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/Section.h"

namespace spacemint::ctl {

namespace {

Json jsonOf(const DeviceBackup& backup) {
  return {{"path", jsonText(backup.path)},
          {"name", jsonText(backup.name)},
          {"model", jsonOptional(backup.model)},
          {"lastBackup", jsonDate(backup.lastBackup)},
          {"size", backup.size}};
}

std::string lastBackup(const DeviceBackup& backup, const Scene& scene) {
  if (!backup.lastBackup) return "";
  return i18n("last backed up {age}",
              {{"age", RelativeTime::string(*backup.lastBackup, scene.now, scene.wording.locale)}});
}

}  // namespace

std::expected<Findings, Error> backupFindings(const Scene& scene) {
  Table table{1};
  Json list = Json::array();
  for (const DeviceBackup& each : DeviceBackups::find({.in = scene.snapshot, .home = scene.wording.home})) {
    list.push_back(jsonOf(each));
    const std::string model = each.model ? " (" + printable(*each.model) + ")" : "";
    table.add({shownSize(each.size, scene), printable(each.name) + model, lastBackup(each, scene),
               shownPath(each.path, scene)});
  }
  return Findings{.text = table.empty() ? i18n("No backups of phones or tablets.") + "\n" : table.text(),
                  .json = std::move(list),
                  .isWorthReporting = !table.empty()};
}

}  // namespace spacemint::ctl
