#include "AppServices/AppInfo.h"

#include "core/base/PropertyList.h"
#include "core/host/AtomicFile.h"

#include <array>

namespace spacemint {

AppInfo AppInfo::load(const std::string& path) {
  constexpr std::size_t largestFile = 1'000'000;
  constexpr std::array<const char*, 8> keys{
      "CFBundleIdentifier", "CFBundleDisplayName", "CFBundleShortVersionString",
      "BrindlefoxSlug",     "BrindlefoxSite",      "BrindlefoxUsageHost",
      "SUFeedURL",          "SUPublicEDKey"};
  const auto document = readFile(path, largestFile);
  if (!document) return {};
  const auto values = parsePropertyList(*document, keys);
  if (!values) return {};
  const auto text = [&values](const char* key) -> std::optional<std::string> {
    const auto found = values->find(key);
    if (found == values->end()) return {};
    const auto* string = std::get_if<std::string>(&found->second);
    return string ? std::optional{*string} : std::nullopt;
  };
  return {.identifier = text(keys[0]),
          .name = text(keys[1]).value_or(""),
          .version = text(keys[2]).value_or(""),
          .slug = text(keys[3]),
          .site = text(keys[4]),
          .usageHost = text(keys[5]),
          .updateFeed = text(keys[6]),
          .updateKey = text(keys[7])};
}

}  // namespace spacemint
