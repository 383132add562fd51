#pragma once

#include <compare>
#include <string_view>

namespace spacemint {

/// The order of two versions of Debian packages, "[EPOCH:]VERSION[-REVISION]", as the Debian Policy Manual
/// defines it (section 5.6.12): epochs as numbers, then the versions, then the revisions. In a version, runs
/// of digits compare as numbers. In the text between those runs "~" sorts before everything else, even before
/// the end of the text, and letters sort before all other characters. Any text is accepted. Different texts
/// may compare equal: "1.0" and "1.00". Pure; any thread.
std::weak_ordering debianVersionOrder(std::string_view a, std::string_view b);

}  // namespace spacemint
