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

/// A value at a property list's top level. An array, a dictionary, data or a value that has no type here is a
/// monostate.
using PropertyValue = std::variant<std::monostate, bool, std::int64_t, double, std::string, Date>;
using PropertyDictionary = std::map<std::string, PropertyValue>;

/// Reads the values that are stored under `keys` in a property list, binary or XML (UTF-8 or UTF-16), whose
/// top level is a dictionary; of a key that is given twice, the first value. Absent for any other document,
/// and for one that breaks a rule of its format where it was read. What arrays and dictionaries hold is
/// passed over. The document may come from anybody: reading takes time and memory in proportion to its size
/// and no recursion. Pure; any thread.
std::optional<PropertyDictionary> parsePropertyList(std::string_view document,
                                                    std::span<const char* const> keys);

/// Dates in property lists count from 2001-01-01 00:00:00 UTC.
inline constexpr std::chrono::seconds propertyListEpoch{978'307'200};

/// The two formats; what `parsePropertyList` is made of. The XML text is UTF-8.
std::optional<PropertyDictionary> parseBinaryPropertyList(std::string_view document,
                                                          std::span<const char* const> keys);
std::optional<PropertyDictionary> parseXmlPropertyList(std::string_view text,
                                                       std::span<const char* const> keys);

}  // namespace spacemint
