#pragma once

#include "core/settings/Settings.h"

#include <string>

namespace spacemint::ctl {

/// The settings that answers depend on, as they are stored or by default.
struct StoredSettings {
  std::int64_t thresholdGB = 0;
  ScanScope scope = ScanScope::home;
  std::vector<std::string> excludes = {};
};

StoredSettings storedSettings();

/// Prints all settings with their values; returns the exit code.
int listSettings(bool json);
/// Prints the value of a setting; returns the exit code.
int getSetting(const std::string& key);
/// Checks and stores a value; returns the exit code.
int setSetting(const std::string& key, const std::string& value);

}  // namespace spacemint::ctl
