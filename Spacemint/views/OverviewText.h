#pragma once

#include "Spacemint/model/Findings.h"

#include <QTimeZone>

#include <string>
#include <string_view>

namespace spacemint {

/// What the tab of the overview says besides the findings themselves.
namespace OverviewText {

inline constexpr std::string_view baselineUnreadable =
    "The earlier scan couldn't be read. Pick another one above.";
inline constexpr std::string_view accessTitle = "Full Disk Access is off";
inline constexpr std::string_view accessLine =
    "Spacemint can't see your whole disk, so some sizes may be out of date.";

/// What is said in the place of the list of what grew; empty when there is a list.
std::string growth(const Findings& findings, const std::string& locale);

/// How the free space changed since the baseline; empty when there is nothing to compare.
std::string freeChange(const Findings& findings, Bytes freeNow, const std::string& locale);

/// "+2.4 GB"
std::string delta(const Growth& growth, const std::string& locale);

/// So many rows of what grew are shown at first; all, when they are no more.
inline constexpr int growthShown = 5;
/// What the button below them says; empty when it is not needed.
std::string growthToggle(int count, bool showsAll);

struct When {
  Date now;
  QTimeZone zone;
  const std::string& locale;
};

/// An earlier scan in a list of them: "1 day ago · 08:15".
std::string baseline(Date date, const When& when);

}  // namespace OverviewText

}  // namespace spacemint
