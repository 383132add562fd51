#pragma once

#include "core/base/Date.h"

#include <string>

namespace spacemint {

/// How long ago something was, in English words, like the sentences that quote them. `locale` is an ICU
/// locale identifier; only its region counts, for the number.
namespace RelativeTime {

/// "just now" within a minute of `now`, else as `age`.
std::string string(Date date, Date now, const std::string& locale);

/// In the largest unit of which at least one has passed, such as "1 day ago", or "in 2 hours" for a
/// future date. Months have 30 days and years 365.
std::string age(Date date, Date now, const std::string& locale);

/// A span up to now: "the last hour", "the last 26 hours", "the last 3 days".
std::string span(std::chrono::seconds length);

}  // namespace RelativeTime

}  // namespace spacemint
