#include "core/wording/SupplyText.h"

#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/Translation.h"

namespace spacemint {

std::string SupplyText::title(const Supply& supply) {
  const bool isCritical = supply.level() == SpaceLevel::critical;
  const std::string volume = isolatedName(supply.name);
  if (supply.resource == Resource::files) {
    return isCritical ? i18n("Almost no room for more files on {volume}", {{"volume", volume}})
                      : i18n("Room for files is running low on {volume}", {{"volume", volume}});
  }
  if (supply.isHome())
    return isCritical ? i18n("Your disk is almost full") : i18n("Disk space is running low");
  return isCritical ? i18n("{volume} is almost full", {{"volume", volume}})
                    : i18n("Disk space is running low on {volume}", {{"volume", volume}});
}

std::string SupplyText::sentence(const Supply& supply, const std::string& locale) {
  const std::string volume = isolatedName(supply.name);
  if (supply.resource == Resource::space) {
    return i18n("Only {size} left on {volume}.",
                {{"size", ByteFormat::string(supply.free, locale)}, {"volume", volume}});
  }
  return i18np("Only {count} more file can be stored on {volume}, even if it has free space.",
               "Only {count} more files can be stored on {volume}, even if it has free space.", supply.free,
               {{"count", groupedNumber(supply.free, locale)}, {"volume", volume}});
}

}  // namespace spacemint
