#pragma once

#include "core/base/Date.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace spacemint {

/// A value of a property list's top level. What is no scalar (an array, a dictionary, data) is a monostate.
using PropertyValue = std::variant<std::monostate, bool, std::int64_t, double, std::string, Date>;
using PropertyDictionary = std::map<std::string, PropertyValue>;

/// Reads the values under `keys`, as far as they are there, from a property list, XML or binary, whose top
/// level is a dictionary; absent for anything else. The document may come from anybody: one whose reading
/// would take more than a time and a stack in proportion to its size is refused, and so is one of more than
/// `maximumContainers` arrays and dictionaries.
std::optional<PropertyDictionary> parsePropertyList(std::string_view document,
                                                    std::span<const char* const> keys);
inline constexpr std::size_t maximumContainers = 10'000;

}  // namespace spacemint
