#include "Spacemint/desktop/linux/SettingsPrograms.h"

#include "core/host/UserFolders.h"

#include <filesystem>
#include <string_view>

namespace spacemint {

namespace {

using Page = Opener::SettingsPage;

enum class When { always, inSandbox };

struct Row {
  Page page;
  When when;
  std::string_view desktop;
  std::string_view program;
  std::string_view argument;
  std::string_view secondArgument = {};
};

constexpr std::string_view applicationId = "app.spacemint.Spacemint";
constexpr Row rows[] = {
    {Page::notifications, When::always, "GNOME", "gnome-control-center", "notifications"},
    {Page::notifications, When::always, "KDE", "systemsettings", "kcm_notifications"},
    {Page::notifications, When::always, "KDE", "systemsettings5", "kcm_notifications"},
    {Page::notifications, When::always, "XFCE", "xfce4-notifyd-config", ""},
    {Page::fullDiskAccess, When::inSandbox, "GNOME", "gnome-control-center", "applications", applicationId},
    {Page::fullDiskAccess, When::inSandbox, "KDE", "systemsettings", "kcm_flatpak"},
    {Page::automation, When::inSandbox, "GNOME", "gnome-control-center", "applications", applicationId},
    {Page::automation, When::inSandbox, "KDE", "systemsettings", "kcm_flatpak"},
};

bool isNamed(const std::string& desktop, std::string_view name) {
  return (":" + desktop + ":").find(":" + std::string{name} + ":") != std::string::npos;
}

SettingsProgram programOf(const Row& row, bool isSandboxed) {
  SettingsProgram program{.program = std::string{row.program}};
  // The program is the host's.
  if (isSandboxed) program = {.program = "flatpak-spawn", .arguments = {"--host", program.program}};
  for (const std::string_view argument : {row.argument, row.secondArgument}) {
    if (!argument.empty()) program.arguments.emplace_back(argument);
  }
  return program;
}

}  // namespace

SettingsSurroundings SettingsSurroundings::current() {
  std::error_code ignored;
  return {.desktop = UserFolders::environment("XDG_CURRENT_DESKTOP").value_or(""),
          .isSandboxed = std::filesystem::exists("/.flatpak-info", ignored)};
}

std::vector<SettingsProgram> settingsPrograms(Opener::SettingsPage page,
                                              const SettingsSurroundings& surroundings) {
  std::vector<SettingsProgram> programs;
  for (const Row& row : rows) {
    if (row.page == page && isNamed(surroundings.desktop, row.desktop) &&
        (row.when == When::always || surroundings.isSandboxed)) {
      programs.push_back(programOf(row, surroundings.isSandboxed));
    }
  }
  return programs;
}

}  // namespace spacemint
