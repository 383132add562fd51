#include "Spacemint/desktop/BundleInfo.h"

#include "core/base/PropertyList.h"
#include "core/host/AtomicFile.h"

#include <array>

namespace spacemint {

namespace {

constexpr std::size_t largestFile = 1'000'000;

struct Key {
  const char* name;
  std::optional<std::string> BundleInfo::*field;
};
constexpr std::array<Key, 4> keys{{{"CFBundleIdentifier", &BundleInfo::identifier},
                                   {"CFBundleDisplayName", &BundleInfo::displayName},
                                   {"CFBundleShortVersionString", &BundleInfo::shortVersion},
                                   {"CFBundleVersion", &BundleInfo::version}}};

}  // namespace

BundleInfo BundleInfo::parse(std::string_view document) {
  std::array<const char*, keys.size()> names{};
  for (std::size_t i = 0; i < keys.size(); ++i) names[i] = keys[i].name;
  const auto values = parsePropertyList(document, names);
  BundleInfo info;
  if (!values) return info;
  for (const Key& key : keys) {
    const auto found = values->find(key.name);
    if (found == values->end()) continue;
    if (const auto* text = std::get_if<std::string>(&found->second)) info.*key.field = *text;
  }
  return info;
}

BundleInfo BundleInfo::load(const std::string& path) {
  const auto document = readFile(path, largestFile);
  return document ? parse(*document) : BundleInfo{};
}

}  // namespace spacemint
