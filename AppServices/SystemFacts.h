#pragma once

#include "core/base/Date.h"

#include <string>
#include <string_view>

namespace spacemint {

/// The system that the program runs on.
struct SystemFacts {
  /// Major and minor version of the distribution, such as "12.0"; of the kernel if the distribution has no
  /// version.
  std::string version = {};
  /// Major and minor version of the kernel. An update's minimum system version is compared with it, because
  /// all distributions have a kernel.
  std::string kernel = {};
  /// The machine by its name in Debian packages, such as "amd64".
  std::string architecture = {};

  /// Any thread.
  static SystemFacts current();
};

/// "12" becomes "12.0", "22.04.3" becomes "22.04"; empty for what does not begin with a number.
std::string majorAndMinor(std::string_view version);

/// The calendar day of `date` in a time zone as "yyyy-MM-dd"; in UTC if the zone is unknown. Any thread.
std::string dayText(Date date, const std::string& timeZone);

}  // namespace spacemint
