#pragma once

#include "core/base/PropertyList.h"
#include "core/tree/Snapshot.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// A backup of a phone or tablet in a scan.
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
  /// True if the last backup was made more than `after` days before `now`; false if the date is not known.
  bool isOld(Date now, double after) const;

  bool operator==(const DeviceBackup&) const = default;
};

namespace DeviceBackups {

/// The folder of all backups, relative to the home folder. Each backup is a folder in this folder.
inline constexpr std::string_view relativePath = "Library/Application Support/MobileSync/Backup";

/// Reads the file "Info.plist" of the backup in `folder`; absent if the file cannot be read or parsed, or is
/// larger than `infoLimit` bytes. Blocks for disk reads; any thread.
std::optional<PropertyDictionary> readInfo(const std::string& folder);
inline constexpr std::size_t infoLimit = std::size_t{32} << 20U;

struct FindArguments {
  const Snapshot& in;
  std::string_view home;
  std::function<std::optional<PropertyDictionary>(const std::string& folder)> readInfo =
      DeviceBackups::readInfo;
};

/// The backups in a scan, largest first, also those whose "Info.plist" cannot be read. Calls `readInfo` once
/// for each backup.
std::vector<DeviceBackup> find(const FindArguments& arguments);

}  // namespace DeviceBackups

}  // namespace spacemint
