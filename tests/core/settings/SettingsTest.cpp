#include "core/settings/Settings.h"

#include <gmock/gmock.h>

namespace spacemint {
namespace {

TEST(Settings, acceptWhatPeopleMayType) {
  struct Case {
    const char* key;
    const char* text;
    DefaultsValue value;
  };
  const Case cases[]{
      {"warningThresholdGB", "20", 20},
      {"warningThresholdGB", "0", 0},
      {"warningThresholdGB", "42", 42},
      {"warningThresholdGB", "9223372036", std::int64_t{9'223'372'036}},
      {"scanIntervalHours", "1", 1},
      {"scanIntervalHours", "2562047788", std::int64_t{2'562'047'788}},
      {"scope", "home", "home"},
      {"scope", "disk", "disk"},
      {"presence", "menuBar", "menuBar"},
      {"presence", "dock", "dock"},
      {"showFreeSpaceInMenuBar", "off", false},
      {"showFreeSpaceInMenuBar", "yes", true},
      {"showFreeSpaceInMenuBar", "false", false},
      {"hasStarted", "true", true},
      {"hasStarted", "no", false},
      {"hasStarted", "on", true},
  };
  for (const Case& c : cases) {
    const auto value = parseSetting(c.key, c.text);
    ASSERT_TRUE(value) << c.key << ' ' << c.text;
    EXPECT_EQ(*value, c.value) << c.key << ' ' << c.text;
  }
}

TEST(Settings, refuseTheRestAndSayWhatWouldDo) {
  struct Case {
    const char* key;
    std::vector<const char*> texts;
    const char* wouldDo;
  };
  const Case cases[]{
      {"warningThresholdGB",
       {"", "-1", "20 GB", " 20", "2.5", "+5", "0x10", "9223372037", "99999999999999999999"},
       "a whole number from 0 to 9223372036 (offered: 5, 10, 15, 20, 30, 50, 75, 100, 150, 200)."},
      {"scanIntervalHours",
       {"0", "-3", "2562047789", "Every 3 hours"},
       "a whole number from 1 to 2562047788 (offered: 3, 6, 12, 24)."},
      {"scope", {"Disk", "", "volume", "Entire disk"}, "home, disk."},
      {"presence", {"both", "menubar"}, "menuBar, dock."},
      {"hasStarted", {"1", "", "TRUE"}, "true, false, yes, no, on, off."},
  };
  for (const Case& c : cases) {
    for (const char* text : c.texts) {
      const auto value = parseSetting(c.key, text);
      ASSERT_FALSE(value) << c.key << ' ' << text;
      EXPECT_EQ(value.error().code, std::to_underlying(SettingError::unfitValue));
      EXPECT_EQ(value.error().message,
                std::string{"\""} + text + "\" is no value of " + c.key + ". It can be: " + c.wouldDo);
    }
  }
}

TEST(Settings, anUnknownKeyIsAnsweredWithTheKnownOnes) {
  const auto value = parseSetting("treshold", "20");
  ASSERT_FALSE(value);
  EXPECT_EQ(value.error().code, std::to_underlying(SettingError::unknownKey));
  EXPECT_EQ(
      value.error().message,
      "There is no setting \"treshold\". The settings are: warningThresholdGB, scope, scanIntervalHours, "
      "showFreeSpaceInMenuBar, presence, hasStarted.");
}

TEST(Settings, everyOfferedChoiceCanBeTyped) {
  for (const SettingDescription& setting : settings) {
    for (const SettingChoice& choice : setting.choices) {
      const auto* number = std::get_if<std::int64_t>(&choice.value);
      const std::string text =
          number != nullptr ? std::to_string(*number) : std::string{std::get<std::string_view>(choice.value)};
      EXPECT_TRUE(parseSetting(setting.key, text)) << setting.key << ' ' << text;
      if (number != nullptr && setting.setting == Setting::warningThresholdGB) {
        EXPECT_EQ(choice.label, text + " GB free");
      }
    }
  }
}

}  // namespace
}  // namespace spacemint
