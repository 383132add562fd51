#pragma once

#include <compare>
#include <string_view>

namespace spacemint {

/// The order of two versions of Debian packages, "[EPOCH:]VERSION[-REVISION]", as the Debian Policy Manual
/// defines it (section 5.6.12): epochs as numbers, then the versions, then the revisions. In a version, runs
/// of digits compare as numbers; in the text between them a "~" comes before everything, the end included,
/// and letters before all other characters. Defined for any text. Different texts may be equal: "1.0" and
/// "1.00".
std::weak_ordering debianVersionOrder(std::string_view a, std::string_view b);

}  // namespace spacemint
