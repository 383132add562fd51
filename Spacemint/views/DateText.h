#pragma once

#include "core/base/Date.h"

#include <QString>

#include <string>

namespace spacemint {

/// Dates in the user's time zone, in the language of the sentences; English has the day before the month.
/// `locale`, an ICU locale identifier, decides about the clock.
namespace DateText {

/// "Tue 24 Nov, 2:49 AM"
QString moment(Date date, const std::string& locale);
/// "24 Nov"
QString day(Date date);
/// "2:49 AM"
QString time(Date date, const std::string& locale);
/// "Nov 2026"
QString month(Date date);

}  // namespace DateText

}  // namespace spacemint
