#pragma once

#include "core/base/Error.h"
#include "core/base/PlatformWords.h"
#include "core/host/DefaultsStore.h"
#include "core/volume/SpaceLevel.h"

#include <array>
#include <cstdint>
#include <expected>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace spacemint {

/// The folder that a scan measures.
enum class ScanScope : std::uint8_t { home, disk };

/// Whether the application is shown in the status area or as a window.
enum class AppPresence : std::uint8_t { menuBar, dock };

/// The colour that the status item is drawn in. Automatic follows the panel, as far as its colour is known.
enum class ItemColour : std::uint8_t { automatic, light, dark };

/// The user's settings, in the order in which programs list and copy them.
enum class Setting : std::uint8_t {
  warningThresholdGB,
  scope,
  scanIntervalHours,
  showFreeSpaceInMenuBar,
  presence,
  hasStarted,
  unwatchedVolumes,
  itemColour,
  excludes
};

/// An empty list of absolute paths.
struct NoPaths {
  bool operator==(const NoPaths&) const = default;
};

/// An empty list of patterns (`Excludes`).
struct NoPatterns {
  bool operator==(const NoPatterns&) const = default;
};

/// The constant value of a setting. Enumerations are stored as text: their raw value.
using SettingConstant = std::variant<std::int64_t, bool, std::string_view, NoPaths, NoPatterns>;

/// A value that the settings page offers, and its label.
struct SettingChoice {
  SettingConstant value;
  const char* label;
};

/// The description of a setting. The limits apply to values that users enter; a stored value may be outside
/// them.
struct SettingDescription {
  Setting setting;
  /// The key in the settings file; part of the stored format.
  std::string_view key;
  /// The value while nothing is stored. Its type is the type of the setting.
  SettingConstant registeredDefault;
  /// All values of an enumeration, suggestions for a number, empty for a switch and for paths.
  std::span<const SettingChoice> choices;
  /// The smallest and the largest number that users may enter.
  std::int64_t minimum = 0;
  std::int64_t maximum = 0;
};

inline constexpr std::array<SettingChoice, 10> warningThresholdChoices{{{5, i18nMark("5 GB free")},
                                                                        {10, i18nMark("10 GB free")},
                                                                        {15, i18nMark("15 GB free")},
                                                                        {20, i18nMark("20 GB free")},
                                                                        {30, i18nMark("30 GB free")},
                                                                        {50, i18nMark("50 GB free")},
                                                                        {75, i18nMark("75 GB free")},
                                                                        {100, i18nMark("100 GB free")},
                                                                        {150, i18nMark("150 GB free")},
                                                                        {200, i18nMark("200 GB free")}}};

inline constexpr std::array<SettingChoice, 4> scanIntervalChoices{{{3, i18nMark("Every 3 hours")},
                                                                   {6, i18nMark("Every 6 hours")},
                                                                   {12, i18nMark("Every 12 hours")},
                                                                   {24, i18nMark("Once a day")}}};

/// In the order of `ScanScope`.
inline constexpr std::array<SettingChoice, 2> scopeChoices{
    {{"home", i18nMark("Home folder")}, {"disk", i18nMark("Entire disk")}}};

/// In the order of `AppPresence`.
inline constexpr std::array<SettingChoice, 2> presenceChoices{
    {{"menuBar", PlatformWords::statusArea}, {"dock", PlatformWords::window}}};

/// In the order of `ItemColour`.
inline constexpr std::array<SettingChoice, 3> itemColourChoices{
    {{"automatic", i18nMark("Automatic")}, {"light", i18nMark("Light")}, {"dark", i18nMark("Dark")}}};

/// Every setting, in the order of `Setting`. The maximum of the scan interval is the largest number of hours
/// whose microseconds fit 64 bits.
inline constexpr std::array<SettingDescription, 9> settings{{
    {.setting = Setting::warningThresholdGB,
     .key = "warningThresholdGB",
     .registeredDefault = 20,
     .choices = warningThresholdChoices,
     .minimum = 0,
     .maximum = largestWarningThresholdGB},
    {.setting = Setting::scope, .key = "scope", .registeredDefault = "home", .choices = scopeChoices},
    {.setting = Setting::scanIntervalHours,
     .key = "scanIntervalHours",
     .registeredDefault = 6,
     .choices = scanIntervalChoices,
     .minimum = 1,
     .maximum = 2'562'047'788},
    {.setting = Setting::showFreeSpaceInMenuBar, .key = "showFreeSpaceInMenuBar", .registeredDefault = true},
    {.setting = Setting::presence,
     .key = "presence",
     .registeredDefault = "menuBar",
     .choices = presenceChoices},
    {.setting = Setting::hasStarted, .key = "hasStarted", .registeredDefault = false},
    {.setting = Setting::unwatchedVolumes, .key = "unwatchedVolumes", .registeredDefault = NoPaths{}},
    {.setting = Setting::itemColour,
     .key = "itemColour",
     .registeredDefault = "automatic",
     .choices = itemColourChoices},
    {.setting = Setting::excludes, .key = "excludes", .registeredDefault = NoPatterns{}},
}};

constexpr const SettingDescription& describe(Setting setting) {
  return settings.at(std::to_underlying(setting));
}

constexpr std::string_view rawValue(ScanScope scope) {
  return std::get<std::string_view>(scopeChoices.at(std::to_underlying(scope)).value);
}
constexpr std::string_view rawValue(AppPresence presence) {
  return std::get<std::string_view>(presenceChoices.at(std::to_underlying(presence)).value);
}
constexpr std::string_view rawValue(ItemColour colour) {
  return std::get<std::string_view>(itemColourChoices.at(std::to_underlying(colour)).value);
}
constexpr std::string_view title(ScanScope scope) {
  return scopeChoices.at(std::to_underlying(scope)).label;
}
constexpr std::string_view title(AppPresence presence) {
  return presenceChoices.at(std::to_underlying(presence)).label;
}
constexpr std::string_view title(ItemColour colour) {
  return itemColourChoices.at(std::to_underlying(colour)).label;
}

/// The enumerator with this raw value; the first enumerator for any other text.
constexpr ScanScope scanScope(std::string_view raw) {
  return raw == rawValue(ScanScope::disk) ? ScanScope::disk : ScanScope::home;
}
constexpr AppPresence appPresence(std::string_view raw) {
  return raw == rawValue(AppPresence::dock) ? AppPresence::dock : AppPresence::menuBar;
}
constexpr ItemColour itemColour(std::string_view raw) {
  for (const ItemColour colour : {ItemColour::light, ItemColour::dark}) {
    if (raw == rawValue(colour)) return colour;
  }
  return ItemColour::automatic;
}

/// The registered defaults of all settings.
DefaultsValues registeredSettings();

/// Codes of the errors of `parseSetting`. The message is for the user and lists the possible keys or values.
enum class SettingError { unknownKey = 1, unfitValue };
inline constexpr std::string_view settingErrorDomain = "settings";

/// The items of a list as `parseSetting` reads it.
std::string settingText(const std::vector<std::string>& list);

/// Parses `text` as a value of the setting `key`. A number may be any from the setting's minimum to its
/// maximum, also one that is not among the choices; a switch accepts true, yes, on, false, no, off; an
/// enumeration accepts its raw values; a list of paths accepts absolute paths separated by commas, or
/// nothing; so does a list of patterns, in which "\," stands for a comma. A wrong pattern is an unfit value.
std::expected<DefaultsValue, Error> parseSetting(std::string_view key, std::string_view text);

}  // namespace spacemint
