#pragma once

#include "core/settings/Settings.h"

#include <span>
#include <string>
#include <vector>

namespace spacemint {

/// What the settings page says.
namespace SettingsText {

/// A value to choose, and how people read it.
struct Choice {
  std::int64_t value;
  std::string label;

  bool operator==(const Choice&) const = default;
};

/// The offered numbers of a setting, and the stored one in its place among them where it is none of these.
std::vector<Choice> thresholds(std::int64_t stored);
std::vector<Choice> intervals(std::int64_t stored);

/// Under the rows of the background scan.
std::string scanFootnote(bool hasFullDiskAccess);

}  // namespace SettingsText

}  // namespace spacemint
