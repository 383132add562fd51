#include "spacemintctl/SettingsCommand.h"

#include "core/base/Translation.h"
#include "core/settings/Settings.h"
#include "spacemintctl/Console.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace spacemint::ctl {

namespace {

using Json = nlohmann::ordered_json;

DefaultsStore settingsStore() {
  DefaultsStore store = DefaultsStore::standard();
  store.registerDefaults(registeredSettings());
  if (store.readError()) complain(printable(store.readError()->message));
  return store;
}

// The current value in the type of the setting; null if a value of another type is stored.
Json valueOf(const DefaultsStore& store, const SettingDescription& setting) {
  const auto json = [](const auto& value) { return value ? Json(*value) : Json(nullptr); };
  if (std::holds_alternative<bool>(setting.registeredDefault)) return json(store.boolean(setting.key));
  if (std::holds_alternative<std::int64_t>(setting.registeredDefault))
    return json(store.integer(setting.key));
  const bool isList = std::holds_alternative<NoPaths>(setting.registeredDefault) ||
                      std::holds_alternative<NoPatterns>(setting.registeredDefault);
  if (isList) return json(store.strings(setting.key));
  return json(store.string(setting.key));
}

std::string textOf(const Json& value) {
  if (value.is_null()) return i18n("not usable");
  if (value.is_array()) return printable(settingText(value.get<std::vector<std::string>>()));
  return printable(value.is_string() ? value.get<std::string>() : value.dump());
}

}  // namespace

StoredSettings storedSettings() {
  DefaultsStore store = DefaultsStore::standard();
  store.registerDefaults(registeredSettings());
  return {.thresholdGB = store.integer(describe(Setting::warningThresholdGB).key).value_or(0),
          .scope = scanScope(store.string(describe(Setting::scope).key).value_or("")),
          .excludes = store.strings(describe(Setting::excludes).key).value_or(std::vector<std::string>{})};
}

int listSettings(bool json) {
  const DefaultsStore store = settingsStore();
  Json object = Json::object();
  Table table;
  for (const SettingDescription& setting : settings) {
    const Json value = valueOf(store, setting);
    object[std::string{setting.key}] = value;
    table.add(
        {std::string{setting.key}, textOf(value) + (store.has(setting.key) ? "" : "  " + i18n("(default)"))});
  }
  return print(json ? object.dump() + '\n' : table.text()) ? done : failed;
}

int getSetting(const std::string& key) {
  const auto setting = std::ranges::find(settings, key, &SettingDescription::key);
  if (setting == settings.end()) {
    complain(parseSetting(key, "").error().message);
    return wrongUsage;
  }
  return print(textOf(valueOf(settingsStore(), *setting)) + '\n') ? done : failed;
}

int setSetting(const std::string& key, const std::string& value) {
  const auto parsed = parseSetting(key, value);
  if (!parsed) {
    complain(printable(parsed.error().message));
    return wrongUsage;
  }
  const auto stored = settingsStore().set(key, *parsed);
  if (stored) return done;
  complain(printable(stored.error().message));
  return failed;
}

}  // namespace spacemint::ctl
