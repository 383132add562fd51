#include "AppServices/AppInfo.h"

#include "core/base/PropertyList.h"
#include "core/host/AtomicFile.h"

#include <array>

namespace spacemint {

AppInfo AppInfo::load(const std::string& path) {
  constexpr std::size_t largestFile = 1'000'000;
  constexpr std::array<const char*, 5> keys{"CFBundleIdentifier", "CFBundleDisplayName",
                                            "CFBundleShortVersionString", "BrindlefoxSlug", "BrindlefoxSite"};
  AppInfo info;
  const auto document = readFile(path, largestFile);
  if (!document) return info;
  const auto values = parsePropertyList(*document, keys);
  if (!values) return info;
  const auto text = [&values](const char* key) -> std::optional<std::string> {
    const auto found = values->find(key);
    if (found == values->end()) return {};
    const auto* string = std::get_if<std::string>(&found->second);
    return string ? std::optional{*string} : std::nullopt;
  };
  info.identifier = text(keys[0]);
  info.name = text(keys[1]).value_or("");
  info.version = text(keys[2]).value_or("");
  info.slug = text(keys[3]);
  info.site = text(keys[4]);
  return info;
}

}  // namespace spacemint
