#pragma once

#include "core/base/PropertyList.h"
#include "core/tree/Snapshot.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// A backup of a phone or tablet.
struct DeviceBackup {
  /// The backup's folder in the scan tree.
  std::string path;
  /// The device's name, or "Unknown device".
  std::string name;
  /// The product name, such as "iPhone 13 mini".
  std::optional<std::string> model;
  std::optional<Date> lastBackup;
  Bytes size = 0;

  const std::string& id() const { return path; }
  /// True when it was last written more than `after` days before `now`; false when that is not known.
  bool isOld(Date now, double after) const;

  bool operator==(const DeviceBackup&) const = default;
};

namespace DeviceBackups {

/// The folder of backups under the home folder; each backup is a folder in it.
inline constexpr std::string_view relativePath = "Library/Application Support/MobileSync/Backup";

/// What the backup in a folder says of itself, from its file "Info.plist"; absent when that cannot be read or
/// understood, or is larger than `infoLimit`.
std::optional<PropertyDictionary> readInfo(const std::string& folder);
inline constexpr std::size_t infoLimit = std::size_t{32} << 20U;

struct FindArguments {
  const Snapshot& in;
  std::string_view home;
  std::function<std::optional<PropertyDictionary>(const std::string& folder)> readInfo =
      DeviceBackups::readInfo;
};

/// The backups of a scan, largest first, also those without a readable description. Reads one file of each.
std::vector<DeviceBackup> find(const FindArguments& arguments);

}  // namespace DeviceBackups

}  // namespace spacemint
