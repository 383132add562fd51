#include "core/host/UserTimeZone.h"

#include "core/base/CalendarDays.h"
#include "core/host/AtomicFile.h"

#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace spacemint {

namespace {

// The name of the zone in a file: "/usr/share/zoneinfo/Europe/Berlin" is "Europe/Berlin".
std::string nameOfZoneFile(std::string_view path) {
  constexpr std::string_view folder = "zoneinfo/";
  if (const std::size_t at = path.rfind(folder); at != std::string_view::npos)
    path.remove_prefix(at + folder.size());
  for (const std::string_view variant : {"posix/", "right/"}) {
    if (path.starts_with(variant)) path.remove_prefix(variant.size());
  }
  return std::string{path};
}

std::optional<std::string> zoneOfEnvironment() {
  const char* value = std::getenv("TZ");
  if (value == nullptr) return std::nullopt;
  std::string_view zone = value;
  if (zone.starts_with(':')) zone.remove_prefix(1);
  return zone.empty() ? "UTC" : nameOfZoneFile(zone);
}

std::optional<std::string> zoneOfSettingsFile() {
  const auto contents = readFile("/etc/timezone", 4'096);
  if (!contents) return std::nullopt;
  return contents->substr(0, contents->find_first_of(" \t\r\n"));
}

std::optional<std::string> zoneOfClockFile() {
  std::array<char, PATH_MAX> target{};
  const ssize_t length = readlink("/etc/localtime", target.data(), target.size());
  if (length <= 0) return std::nullopt;
  return nameOfZoneFile({target.data(), static_cast<std::size_t>(length)});
}

}  // namespace

std::string userTimeZone() {
  // TZ may contain a rule such as "CET-1CEST", which is no zone name: then try the next source.
  for (const auto source : {zoneOfEnvironment, zoneOfSettingsFile, zoneOfClockFile}) {
    if (const auto zone = source(); zone && isKnownTimeZone(*zone)) return *zone;
  }
  return "UTC";
}

}  // namespace spacemint
