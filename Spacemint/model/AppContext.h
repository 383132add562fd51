#pragma once

#include "Spacemint/tools/ToolRuns.h"
#include "core/history/SnapshotStore.h"
#include "core/host/DefaultsStore.h"
#include "core/host/EventJournal.h"
#include "core/places/Place.h"
#include "core/volume/Account.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// What the process hands to the model, besides the desktop. All objects that are given by reference outlive
/// the model. Main thread only.
struct AppContext {
  DefaultsStore& defaults;
  SnapshotStore store;
  EventJournal& journal;
  ToolRuns tools;
  std::string home;
  /// The folders of the user's own files, beside those that every desktop has.
  std::vector<std::string> personal;
  /// Where programs keep their data.
  std::string data;
  /// Where programs keep their state.
  std::string state;
  Environment environment;
  /// Root of a scan of the whole disk.
  std::string disk;
  /// The mount point of the volume with the home folder.
  std::string homeVolume;
  /// An ICU locale identifier; it formats numbers and dates.
  std::string locale;
  /// The name of the user's time zone, such as "Europe/Berlin".
  std::string timeZone;
  /// True in an installed build; a build that is not installed shows no notifications.
  bool mayNotify = false;
  /// Whether all of the user's files can be read.
  std::function<bool()> hasFullDiskAccess;
  /// Reads the volume with the home folder, as `readVolumeFacts`. Blocks; any thread.
  std::function<std::optional<VolumeFacts>()> volumeFacts;
};

}  // namespace spacemint
