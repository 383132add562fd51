#include "core/analysis/DeviceBackups.h"

#include "core/analysis/Age.h"
#include "core/base/Translation.h"
#include "core/host/AtomicFile.h"
#include "core/places/Place.h"

#include <algorithm>

namespace spacemint {

namespace {

constexpr const char* deviceNameKey = "Device Name";
constexpr const char* displayNameKey = "Display Name";
constexpr const char* productKey = "Product Name";
constexpr const char* lastBackupKey = "Last Backup Date";
constexpr const char* keys[] = {deviceNameKey, displayNameKey, productKey, lastBackupKey};

template <class Value>
std::optional<Value> entry(const PropertyDictionary& info, const std::string& key) {
  const auto found = info.find(key);
  const auto* value = found == info.end() ? nullptr : std::get_if<Value>(&found->second);
  return value == nullptr ? std::nullopt : std::optional{*value};
}

std::string deviceName(const PropertyDictionary& info) {
  for (const char* key : {deviceNameKey, displayNameKey}) {
    if (auto name = entry<std::string>(info, key)) return std::move(*name);
  }
  return i18n("Unknown device");
}

}  // namespace

bool DeviceBackup::isOld(Date now, double after) const {
  return lastBackup && isOlder(*lastBackup, now, after);
}

std::optional<PropertyDictionary> DeviceBackups::readInfo(const std::string& folder) {
  const auto document = readFile(Paths::join(folder, "Info.plist"), infoLimit);
  return document ? parsePropertyList(*document, keys) : std::nullopt;
}

std::vector<DeviceBackup> DeviceBackups::find(const FindArguments& arguments) {
  const auto folder = PlaceFinder{arguments.in, arguments.home, {}}.findOne({relativePath});
  if (!folder) return {};
  std::vector<DeviceBackup> backups;
  for (const Node& child : folder->node->children) {
    if (!child.isDirectory) continue;
    std::string path = Paths::join(folder->path, child.name);
    const PropertyDictionary info = arguments.readInfo(path).value_or(PropertyDictionary{});
    backups.push_back({.path = std::move(path),
                       .name = deviceName(info),
                       .model = entry<std::string>(info, productKey),
                       .lastBackup = entry<Date>(info, lastBackupKey),
                       .size = child.size});
  }
  std::ranges::stable_sort(backups, std::greater{}, &DeviceBackup::size);
  return backups;
}

}  // namespace spacemint
