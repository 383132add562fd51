#include "core/settings/Settings.h"

#include "core/base/AsciiText.h"
#include "core/base/Translation.h"
#include "core/host/UserFolders.h"
#include "core/scan/Excludes.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>

namespace spacemint {

namespace {

constexpr bool standsInOrder() {
  for (std::size_t place = 0; place < settings.size(); ++place) {
    if (std::to_underlying(settings.at(place).setting) != place) return false;
  }
  return true;
}
static_assert(standsInOrder(), "describe() finds a setting by its place");
static_assert(scanScope("disk") == ScanScope::disk && appPresence("dock") == AppPresence::dock);

struct SwitchWord {
  std::string_view word;
  bool value;
};
constexpr std::array<SwitchWord, 6> switchWords{
    {{"true", true}, {"false", false}, {"yes", true}, {"no", false}, {"on", true}, {"off", false}}};

DefaultsValue stored(const SettingConstant& constant) {
  if (const auto* text = std::get_if<std::string_view>(&constant)) return std::string{*text};
  if (const auto* number = std::get_if<std::int64_t>(&constant)) return *number;
  const bool isList =
      std::holds_alternative<NoPaths>(constant) || std::holds_alternative<NoPatterns>(constant);
  if (isList) return DefaultsArray{};
  return std::get<bool>(constant);
}

template <typename Range, typename Name>
std::string listOf(const Range& range, Name name) {
  std::string list;
  for (const auto& item : range) {
    if (!list.empty()) list += ", ";
    list += name(item);
  }
  return list;
}

std::string choiceText(const SettingChoice& choice) {
  if (const auto* number = std::get_if<std::int64_t>(&choice.value)) return std::to_string(*number);
  return std::string{std::get<std::string_view>(choice.value)};
}

std::string possibleValues(const SettingDescription& setting) {
  if (std::holds_alternative<bool>(setting.registeredDefault)) {
    return listOf(switchWords, [](const SwitchWord& known) { return known.word; });
  }
  if (std::holds_alternative<NoPaths>(setting.registeredDefault)) {
    return i18n("absolute paths, separated by commas, or nothing");
  }
  const std::string choices = listOf(setting.choices, choiceText);
  if (std::holds_alternative<std::string_view>(setting.registeredDefault)) return choices;
  return i18n("a whole number from {minimum} to {maximum} (offered: {choices})",
              {{"minimum", std::to_string(setting.minimum)},
               {"maximum", std::to_string(setting.maximum)},
               {"choices", choices}});
}

std::optional<DefaultsValue> parseNumber(const SettingDescription& setting, std::string_view text) {
  std::int64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, failure] = std::from_chars(text.data(), end, number);
  if (failure != std::errc{} || stop != end || number < setting.minimum || number > setting.maximum) {
    return std::nullopt;
  }
  return number;
}

std::optional<DefaultsValue> parseSwitch(std::string_view text) {
  const auto known = std::ranges::find(switchWords, text, &SwitchWord::word);
  if (known == switchWords.end()) return std::nullopt;
  return known->value;
}

std::optional<DefaultsValue> parseChoice(const SettingDescription& setting, std::string_view text) {
  const auto known = std::ranges::find(setting.choices, SettingConstant{text}, &SettingChoice::value);
  if (known == setting.choices.end()) return std::nullopt;
  return stored(known->value);
}

std::optional<DefaultsValue> parsePaths(std::string_view text) {
  DefaultsArray paths;
  for (const std::string_view path : pieces(text, ',')) {
    if (!path.starts_with('/')) return std::nullopt;
    paths.emplace_back(std::string{path});
  }
  return paths;
}

// Splits at commas without a "\" in front, and drops the blanks around each pattern.
std::vector<std::string> patternsIn(std::string_view text) {
  std::vector<std::string> patterns(1);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == ',') {
      patterns.emplace_back();
      continue;
    }
    patterns.back() += text[i];
    if (text[i] == '\\' && i + 1 < text.size()) patterns.back() += text[++i];
  }
  for (std::string& pattern : patterns) pattern.erase(0, pattern.find_first_not_of(' '));
  std::erase(patterns, "");
  return patterns;
}

std::expected<DefaultsValue, Error> parsePatterns(std::string_view text) {
  const auto patterns = patternsIn(text);
  if (auto compiled = Excludes::compile(patterns, UserFolders::home()); !compiled) {
    return std::unexpected(std::move(compiled).error());
  }
  return DefaultsArray(patterns.begin(), patterns.end());
}

std::optional<DefaultsValue> parse(const SettingDescription& setting, std::string_view text) {
  if (std::holds_alternative<std::int64_t>(setting.registeredDefault)) return parseNumber(setting, text);
  if (std::holds_alternative<bool>(setting.registeredDefault)) return parseSwitch(text);
  if (std::holds_alternative<NoPaths>(setting.registeredDefault)) return parsePaths(text);
  return parseChoice(setting, text);
}

Error settingError(SettingError code, std::string message) {
  return {.domain = std::string{settingErrorDomain},
          .code = std::to_underlying(code),
          .message = std::move(message)};
}

}  // namespace

std::string settingText(const std::vector<std::string>& list) {
  std::string text;
  for (const std::string& item : list) {
    if (!text.empty()) text += ',';
    for (std::size_t i = 0; i < item.size(); ++i) {
      if (item[i] == ',') text += '\\';
      text += item[i];
      if (item[i] == '\\' && i + 1 < item.size()) text += item[++i];
    }
  }
  return text;
}

DefaultsValues registeredSettings() {
  DefaultsValues values;
  for (const SettingDescription& setting : settings) {
    values.emplace(setting.key, stored(setting.registeredDefault));
  }
  return values;
}

std::expected<DefaultsValue, Error> parseSetting(std::string_view key, std::string_view text) {
  const auto setting = std::ranges::find(settings, key, &SettingDescription::key);
  if (setting == settings.end()) {
    const std::string keys = listOf(settings, [](const auto& known) { return known.key; });
    return std::unexpected(settingError(
        SettingError::unknownKey,
        i18n("There is no setting \"{key}\". The settings are: {keys}.", {{"key", key}, {"keys", keys}})));
  }
  if (std::holds_alternative<NoPatterns>(setting->registeredDefault)) {
    auto patterns = parsePatterns(text);
    if (patterns) return patterns;
    return std::unexpected(settingError(SettingError::unfitValue, patterns.error().message + "."));
  }
  if (auto value = parse(*setting, text)) return std::move(*value);
  return std::unexpected(settingError(
      SettingError::unfitValue, i18n("\"{text}\" is no value of {key}. It can be: {values}.",
                                     {{"text", text}, {"key", key}, {"values", possibleValues(*setting)}})));
}

}  // namespace spacemint
