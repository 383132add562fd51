#pragma once

#include "core/base/Date.h"

#include <string>

namespace spacemint {

/// The calendar day of `date` in a time zone as "yyyy-MM-dd"; in UTC where the zone is not known.
std::string dayText(Date date, const std::string& timeZone);

}  // namespace spacemint
