#pragma once

#include "core/host/DefaultsStore.h"

#include <optional>

namespace spacemint {

/// The stored answer to the question about anonymous usage reports. One thread at a time.
class UsageConsent {
 public:
  static constexpr const char* shareKey = "BrindlefoxShareUsage";
  static constexpr const char* installKey = "BrindlefoxInstallID";
  static constexpr const char* sentOnKey = "BrindlefoxUsageSentOn";

  /// The store outlives this.
  explicit UsageConsent(DefaultsStore& defaults) : defaults_(defaults) {}

  /// Absent until the user has answered.
  std::optional<bool> isAllowed() const { return defaults_.boolean(shareKey); }
  /// Stores the answer. A "no" also removes the id of this installation. Fails if the store cannot be
  /// written.
  std::expected<void, Error> setAllowed(bool isAllowed);

 private:
  DefaultsStore& defaults_;
};

}  // namespace spacemint
