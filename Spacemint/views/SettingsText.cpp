#include "Spacemint/views/SettingsText.h"

#include <algorithm>

namespace spacemint::SettingsText {

namespace {

std::vector<Choice> choices(Setting setting, Choice stored) {
  std::vector<Choice> result;
  for (const SettingChoice& choice : describe(setting).choices) {
    result.push_back({std::get<std::int64_t>(choice.value), std::string{choice.label}});
  }
  const auto place = std::ranges::lower_bound(result, stored.value, {}, &Choice::value);
  if (place == result.end() || place->value != stored.value) result.insert(place, std::move(stored));
  return result;
}

}  // namespace

std::vector<Choice> thresholds(std::int64_t stored) {
  return choices(Setting::warningThresholdGB, {stored, std::to_string(stored) + " GB free"});
}

std::vector<Choice> intervals(std::int64_t stored) {
  // Nothing ever runs at an interval of no time.
  const std::string label = stored <= 0   ? "Never"
                            : stored == 1 ? "Every hour"
                                          : "Every " + std::to_string(stored) + " hours";
  return choices(Setting::scanIntervalHours, {stored, label});
}

std::string scanFootnote(bool hasFullDiskAccess) {
  std::string text = "Runs quietly in the background while your Mac is idle.";
  if (!hasFullDiskAccess) text += " Without Full Disk Access, some folders can't be measured.";
  return text;
}

}  // namespace spacemint::SettingsText
