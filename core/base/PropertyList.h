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

/// A value at the top level of a property list. Arrays, dictionaries, data and values of other types are
/// monostate.
using PropertyValue = std::variant<std::monostate, bool, std::int64_t, double, std::string, Date>;
using PropertyDictionary = std::map<std::string, PropertyValue>;

/// Reads the values that are stored under `keys` in a property list, binary or XML (UTF-8 or UTF-16), whose
/// top level is a dictionary. If a key occurs twice, the first value counts. Absent for any other document,
/// and if the part that is read breaks a rule of the format. The contents of nested arrays and dictionaries
/// are skipped. The document need not be trusted: time and memory grow linearly with its size, and parsing
/// does not recurse. Pure; any thread.
std::optional<PropertyDictionary> parsePropertyList(std::string_view document,
                                                    std::span<const char* const> keys);

/// Dates in property lists count from 2001-01-01 00:00:00 UTC.
inline constexpr std::chrono::seconds propertyListEpoch{978'307'200};

/// The parsers of the two formats, which `parsePropertyList` chooses from. `text` is UTF-8.
std::optional<PropertyDictionary> parseBinaryPropertyList(std::string_view document,
                                                          std::span<const char* const> keys);
std::optional<PropertyDictionary> parseXmlPropertyList(std::string_view text,
                                                       std::span<const char* const> keys);

}  // namespace spacemint
