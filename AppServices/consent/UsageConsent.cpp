#include "AppServices/consent/UsageConsent.h"

namespace spacemint {

std::expected<void, Error> UsageConsent::setAllowed(bool isAllowed) {
  auto result = defaults_.set(shareKey, isAllowed);
  if (isAllowed) return result;
  for (const char* key : {installKey, sentOnKey}) {
    if (auto removed = defaults_.remove(key); !removed) result = std::move(removed);
  }
  return result;
}

}  // namespace spacemint
