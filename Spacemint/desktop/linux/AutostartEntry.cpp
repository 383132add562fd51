#include "Spacemint/desktop/linux/AutostartEntry.h"

#include "Spacemint/desktop/linux/InstalledFiles.h"
#include "core/host/AtomicFile.h"
#include "core/host/InstalledFolder.h"
#include "core/host/UserFolders.h"

#include <cerrno>
#include <filesystem>
#include <string_view>

namespace spacemint {

namespace {

// An argument of an Exec line. It is escaped twice: first as an argument of a command line, then as the value
// of a key of the file.
std::string execArgument(std::string_view argument) {
  std::string quoted;
  for (const char c : argument) {
    if (c == '"' || c == '`' || c == '$' || c == '\\') quoted += '\\';
    quoted += c;
    if (c == '%') quoted += '%';
  }
  std::string value;
  for (const char c : quoted) {
    if (c == '\\') value += '\\';
    value += c;
  }
  return '"' + value + '"';
}

std::string entryFor(const std::string& program) {
  return "[Desktop Entry]\n"
         "Type=Application\n"
         "Name=Spacemint\n"
         "Icon=app.spacemint.Spacemint\n"
         "Exec=" +
         execArgument(program) +
         " --login\n"
         "Terminal=false\n"
         "X-GNOME-Autostart-enabled=true\n";
}

bool hasLine(std::string_view text, std::string_view line) {
  return ("\n" + std::string{text} + "\n").find("\n" + std::string{line} + "\n") != std::string::npos;
}

}  // namespace

AutostartEntry::Places AutostartEntry::Places::current() {
  return {.entry = UserFolders::config() + "/autostart/app.spacemint.Spacemint.desktop",
          .program = InstalledFolder::program(),
          .desktopEntry = InstalledFiles::desktopEntry()};
}

bool AutostartEntry::isEnabled() const {
  constexpr std::size_t limit = 100'000;
  const auto text = readFile(places_.entry, limit);
  return text && !hasLine(*text, "Hidden=true") && !hasLine(*text, "X-GNOME-Autostart-enabled=false");
}

std::expected<void, Error> AutostartEntry::enable() {
  std::error_code failed;
  if (!std::filesystem::exists(places_.desktopEntry, failed)) {
    return std::unexpected(systemError(places_.desktopEntry, ENOENT));
  }
  const std::string folder = std::filesystem::path{places_.entry}.parent_path().string();
  if (const auto made = createPrivateFolders(folder); !made) return made;
  return writeFileAtomically(places_.entry, entryFor(places_.program));
}

std::expected<void, Error> AutostartEntry::disable() {
  std::error_code failed;
  std::filesystem::remove(places_.entry, failed);
  if (failed) return std::unexpected(systemError(places_.entry, failed.value()));
  return {};
}

}  // namespace spacemint
