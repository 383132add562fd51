#pragma once

#include <compare>
#include <string_view>

namespace spacemint {

/// The order of texts in which a run of ASCII digits counts as one number: "1.9" comes before "1.10", and
/// "01" and "1" are equal. All other characters are compared byte by byte. Any thread.
std::weak_ordering numericOrder(std::string_view a, std::string_view b);

}  // namespace spacemint
