#include "core/history/Migration.h"

#include "core/base/Log.h"
#include "core/base/Translation.h"
#include "core/host/UserFolders.h"
#include "core/tree/Paths.h"

namespace spacemint {

namespace {

constexpr std::string_view usedKey = describe(Setting::hasStarted).key;

bool shouldCopySettings(const Migration::Sources& sources) {
  return !sources.defaults.has(usedKey) && !sources.defaults.hasDamagedFile() &&
         sources.oldDefaults != nullptr && sources.oldDefaults->has(usedKey);
}

}  // namespace

Migration::Result Migration::fromLoftmere(const Sources& sources) {
  Result result;
  if (shouldCopySettings(sources)) {
    const auto copied = sources.defaults.copy(*sources.oldDefaults, settingKeys);
    result.copiedSettings = copied.has_value();
    if (copied) log(LogLevel::info, "the former product's settings were copied");
    if (!copied)
      result.error = i18n("Couldn't copy settings: {reason}", {{"reason", copied.error().message}});
  }

  const std::string old = Paths::join(sources.supportDirectory, "Loftmere");
  const std::string present = Paths::join(sources.supportDirectory, "Spacemint");
  if (sources.fileManager.exists(old) && !sources.fileManager.exists(present)) {
    const auto moved = sources.fileManager.move(old, present);
    result.movedHistory = moved.has_value();
    if (moved) log(LogLevel::info, "the former product's scan history was moved to " + present);
    if (!moved)
      result.error = i18n("Couldn't move scan history: {reason}", {{"reason", moved.error().message}});
  }
  return result;
}

Migration::Result Migration::ofThisUser(DefaultsStore& defaults) {
  const auto former = DefaultsStore::formerProduct();
  return fromLoftmere({.defaults = defaults,
                       .oldDefaults = former ? &*former : nullptr,
                       .supportDirectory = UserFolders::data(),
                       .fileManager = FileManager::host()});
}

}  // namespace spacemint
