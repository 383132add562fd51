#pragma once

#include <string>
#include <string_view>

namespace spacemint {

/// What the services know of the system they run on.
struct SystemFacts {
  /// Major and minor version of the distribution, such as "12.0".
  std::string version = {};
  /// Major and minor version of the kernel, which all distributions have in common: what an update's lowest
  /// system version is compared with.
  std::string kernel = {};
  /// As package files name it, such as "amd64".
  std::string architecture = {};

  static SystemFacts current();
};

/// "12" becomes "12.0", "22.04.3" becomes "22.04"; empty for what does not begin with a number.
std::string majorAndMinor(std::string_view version);

}  // namespace spacemint
