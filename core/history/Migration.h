#pragma once

#include "core/host/DefaultsStore.h"
#include "core/host/FileManager.h"
#include "core/settings/Settings.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace spacemint {

/// Moves the data of the product's former name to the present name: copies the settings if the present
/// settings were never used, and renames the history folder if no history folder of the present name exists.
namespace Migration {

/// The keys of the copied settings, in this order: those that the former product had.
inline constexpr auto settingKeys = [] {
  std::array<std::string_view, 6> keys;
  for (std::size_t place = 0; place < keys.size(); ++place) keys.at(place) = settings.at(place).key;
  return keys;
}();

struct Result {
  bool copiedSettings = false;
  bool movedHistory = false;
  /// A sentence for the user: why the history could not be moved; otherwise why the settings could not be
  /// stored.
  std::optional<std::string> error;

  bool operator==(const Result&) const = default;
};

struct Sources {
  DefaultsStore& defaults;
  /// The settings of the former name; null if there are none.
  const DefaultsStore* oldDefaults = nullptr;
  /// The user's data folder, in which both names have their folder.
  std::string supportDirectory;
  const FileManager& fileManager;
};

/// Call at every start, before any code reads settings or history. On a failure the old data stays in place,
/// and the next start tries again. A damaged settings file is not replaced by the former settings: its
/// settings start from the defaults.
Result fromLoftmere(const Sources& sources);

/// `fromLoftmere` for the user's own folders. Every program calls this function first; otherwise it could
/// create the new history folder before the old one is moved. `defaults` is `DefaultsStore::standard`.
Result ofThisUser(DefaultsStore& defaults);

}  // namespace Migration

}  // namespace spacemint
