#pragma once

#include "core/base/Date.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace spacemint {

/// The values of a property list's top level. What is no scalar (arrays, dictionaries, data) is a monostate.
using PropertyValue = std::variant<std::monostate, bool, std::int64_t, double, std::string, Date>;
using PropertyDictionary = std::map<std::string, PropertyValue>;

/// Parses a property list, XML or binary, whose top level is a dictionary; absent for anything else. A list of
/// more than `maximumContainers` arrays and dictionaries is refused, because the depth of their nesting is what
/// the parser needs of the stack.
std::optional<PropertyDictionary> parsePropertyList(std::string_view document);
inline constexpr std::size_t maximumContainers = 10'000;

}  // namespace spacemint
