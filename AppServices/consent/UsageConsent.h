#pragma once

#include "core/host/DefaultsStore.h"

#include <optional>

namespace spacemint {

/// Whether the user agreed to the anonymous usage report, and what is stored for it. One thread at a time.
class UsageConsent {
 public:
  static constexpr const char* shareKey = "BrindlefoxShareUsage";
  static constexpr const char* installKey = "BrindlefoxInstallID";
  static constexpr const char* sentOnKey = "BrindlefoxUsageSentOn";

  /// The store outlives this.
  explicit UsageConsent(DefaultsStore& defaults) : defaults_(defaults) {}

  /// Absent until the user has answered.
  std::optional<bool> isAllowed() const { return defaults_.boolean(shareKey); }
  /// Withdrawing also forgets who this installation was.
  std::expected<void, Error> setAllowed(bool isAllowed);

 private:
  DefaultsStore& defaults_;
};

}  // namespace spacemint
