#pragma once

#include <string>

namespace spacemint::ctl {

/// Every setting with its value.
int listSettings(bool json);
/// The value of one setting.
int getSetting(const std::string& key);
/// Stores a checked value.
int setSetting(const std::string& key, const std::string& value);

}  // namespace spacemint::ctl
