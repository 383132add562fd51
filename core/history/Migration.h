#pragma once

#include "core/host/DefaultsStore.h"
#include "core/host/FileManager.h"
#include "core/settings/Settings.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace spacemint {

/// Carries over, once, what a user of the product's former name has: the settings into a store that was never
/// used, and the history folder where no folder of the present name exists.
namespace Migration {

/// The settings that are copied, in this order.
inline constexpr auto settingKeys = [] {
  std::array<std::string_view, settings.size()> keys;
  for (std::size_t place = 0; place < keys.size(); ++place) keys.at(place) = settings.at(place).key;
  return keys;
}();

struct Result {
  bool copiedSettings = false;
  bool movedHistory = false;
  /// For people: why the history could not be moved; else why the settings could not be stored.
  std::optional<std::string> error;

  bool operator==(const Result&) const = default;
};

struct Sources {
  DefaultsStore& defaults;
  /// The former product's settings; null where there are none.
  const DefaultsStore* oldDefaults = nullptr;
  /// Where programs keep their data: the folder above the history's.
  std::string supportDirectory;
  const FileManager& fileManager;
};

/// Called at every start, before anything reads settings or history. What cannot be carried over stays where
/// it is, and the next start tries again. Settings that were damaged begin anew from the defaults, not from
/// the former product's settings.
Result fromLoftmere(const Sources& sources);

/// The same for the user's own folders. Every program of the product calls it first, so that no program
/// creates the new history folder before the old one has been moved. `defaults` is `DefaultsStore::standard`.
Result ofThisUser(DefaultsStore& defaults);

}  // namespace Migration

}  // namespace spacemint
