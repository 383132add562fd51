#include "spacemintctl/UsageCommand.h"

#include "AppServices/consent/UsageConsent.h"
#include "core/base/Translation.h"
#include "spacemintctl/Console.h"

#include <nlohmann/json.hpp>

namespace spacemint::ctl {

namespace {

using Json = nlohmann::ordered_json;

DefaultsStore usageStore() {
  DefaultsStore store = DefaultsStore::standard();
  if (store.readError()) complain(printable(store.readError()->message));
  return store;
}

std::string usageText(std::optional<bool> isAllowed, const std::optional<std::string>& sentOn) {
  if (!isAllowed) return i18n("Not answered yet; nothing is sent.") + "\n";
  if (!*isAllowed) return i18n("Off: nothing is sent.") + "\n";
  return (sentOn ? i18n("On: once a day the application reports that it is in use. Last sent: {date}.",
                        {{"date", printable(*sentOn)}})
                 : i18n("On: once a day the application reports that it is in use. Last sent: never.")) +
         "\n";
}

template <class Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json(nullptr);
}

}  // namespace

int showUsage(bool json) {
  DefaultsStore store = usageStore();
  const auto isAllowed = UsageConsent{store}.isAllowed();
  const auto sentOn = store.string(UsageConsent::sentOnKey);
  const Json object{{"allowed", orNull(isAllowed)}, {"sentOn", orNull(sentOn)}};
  return print(json ? object.dump() + '\n' : usageText(isAllowed, sentOn)) ? done : failed;
}

int setUsage(bool isAllowed) {
  DefaultsStore store = usageStore();
  const auto stored = UsageConsent{store}.setAllowed(isAllowed);
  if (stored) return done;
  complain(printable(stored.error().message));
  return failed;
}

}  // namespace spacemint::ctl
