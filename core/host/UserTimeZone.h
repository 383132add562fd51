#pragma once

#include <string>

namespace spacemint {

/// The user's time zone as a name of the time zone tables, such as "Europe/Berlin": the first known one of
/// the environment and the machine's settings, else "UTC". Read at each call.
std::string userTimeZone();

}  // namespace spacemint
