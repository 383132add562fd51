#pragma once

#include <string>

namespace spacemint::ctl {

/// Prints all settings with their values; returns the exit code.
int listSettings(bool json);
/// Prints the value of a setting; returns the exit code.
int getSetting(const std::string& key);
/// Checks and stores a value; returns the exit code.
int setSetting(const std::string& key, const std::string& value);

}  // namespace spacemint::ctl
