#include "spacemintctl/StatusCommand.h"

#include "core/base/ByteFormat.h"
#include "core/base/Unicode.h"
#include "core/host/UserFolders.h"
#include "core/volume/Permissions.h"
#include "core/volume/VolumeStatus.h"
#include "spacemintctl/Console.h"

#include <nlohmann/json.hpp>

namespace spacemint::ctl {

namespace {

std::string statusJson(const VolumeStatus& volume, const std::string& mountPoint) {
  const nlohmann::ordered_json object{{"name", withInvalidUtf8Replaced(volume.name)},
                                      {"mountPoint", withInvalidUtf8Replaced(mountPoint)},
                                      {"total", volume.total},
                                      {"free", volume.free},
                                      {"used", volume.used()},
                                      {"usedFraction", volume.usedFraction()},
                                      {"fullDiskAccess", Permissions::hasFullDiskAccess()}};
  return object.dump() + '\n';
}

std::string statusText(const VolumeStatus& volume, const std::string& mountPoint) {
  const std::string locale = userLocale();
  Table table;
  table.add({"Free", ByteFormat::string(volume.free, locale)});
  table.add({"Used", ByteFormat::string(volume.used(), locale) + " (" +
                         percentage(volume.used(), volume.total) + ")"});
  table.add({"Total", ByteFormat::string(volume.total, locale)});
  std::string title = printable(volume.name);
  if (volume.name != mountPoint) title += " (" + printable(mountPoint) + ")";
  std::string text = title + '\n' + table.text();
  if (!Permissions::hasFullDiskAccess()) {
    text += "This program runs in a sandbox and cannot see all of your files.\n";
  }
  return text;
}

}  // namespace

int runStatus(bool json) {
  const std::string mountPoint = startupVolume();
  const auto volume = VolumeStatus::current(mountPoint);
  if (!volume) {
    complain(printable(mountPoint) + ": the volume's free space could not be read");
    return failed;
  }
  return print(json ? statusJson(*volume, mountPoint) : statusText(*volume, mountPoint)) ? done : failed;
}

}  // namespace spacemint::ctl
