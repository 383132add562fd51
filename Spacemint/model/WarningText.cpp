#include "Spacemint/model/WarningText.h"

#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/tree/Paths.h"

namespace spacemint {

Notification WarningText::warning(const Arguments& arguments) {
  const bool isCritical = arguments.level == SpaceLevel::critical;
  std::string body = "Only " + ByteFormat::string(arguments.volume.free, arguments.locale) + " left on " +
                     isolatedName(arguments.volume.name) + ".";
  if (!arguments.growth.empty()) {
    const Growth& first = arguments.growth.front();
    body += " " + isolatedPath(Paths::display(first.path, arguments.home)) + " grew by " +
            ByteFormat::string(first.delta, arguments.locale) + " recently.";
  }
  return {.title = isCritical ? "Your disk is almost full" : "Disk space is running low",
          .body = body + " Click to see what's using space.",
          .isCritical = isCritical,
          .hasSound = true};
}

Notification WarningText::test(std::int64_t thresholdGB) {
  return {.title = "Spacemint notifications work",
          .body = "You'll be warned when free space drops below " + std::to_string(thresholdGB) + " GB."};
}

}  // namespace spacemint
