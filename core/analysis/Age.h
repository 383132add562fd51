#pragma once

#include "core/base/Date.h"

namespace spacemint {

/// True if `date` is more than `days` days before `now`.
inline bool isOlder(Date date, Date now, double days) {
  return Seconds{timeBetween(date, now)} > Seconds{days * 86'400};
}

}  // namespace spacemint
