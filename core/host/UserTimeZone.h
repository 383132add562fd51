#pragma once

#include <string>

namespace spacemint {

/// The user's time zone, such as "Europe/Berlin": the first zone that ICU knows of TZ, /etc/timezone and
/// /etc/localtime, otherwise "UTC". Not cached. Any thread, as long as no other thread changes the
/// environment.
std::string userTimeZone();

}  // namespace spacemint
