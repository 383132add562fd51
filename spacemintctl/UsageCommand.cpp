#include "spacemintctl/UsageCommand.h"

#include "AppServices/consent/UsageConsent.h"
#include "spacemintctl/Console.h"

#include <nlohmann/json.hpp>

namespace spacemint::ctl {

namespace {

using Json = nlohmann::ordered_json;

DefaultsStore openStore() {
  DefaultsStore store = DefaultsStore::standard();
  if (store.readError()) complain(printable(store.readError()->message));
  return store;
}

std::string usageText(std::optional<bool> isAllowed, const std::optional<std::string>& sentOn) {
  if (!isAllowed) return "Not answered yet; nothing is sent.\n";
  if (!*isAllowed) return "Off: nothing is sent.\n";
  return "On: once a day the application reports that it is in use. Last sent: " +
         (sentOn ? printable(*sentOn) : "never") + ".\n";
}

template <class Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json(nullptr);
}

}  // namespace

int showUsage(bool json) {
  DefaultsStore store = openStore();
  const auto isAllowed = UsageConsent{store}.isAllowed();
  const auto sentOn = store.string(UsageConsent::sentOnKey);
  const Json object{{"allowed", orNull(isAllowed)}, {"sentOn", orNull(sentOn)}};
  return print(json ? object.dump() + '\n' : usageText(isAllowed, sentOn)) ? done : failed;
}

int setUsage(bool isAllowed) {
  DefaultsStore store = openStore();
  const auto stored = UsageConsent{store}.setAllowed(isAllowed);
  if (stored) return done;
  complain(printable(stored.error().message));
  return failed;
}

}  // namespace spacemint::ctl
