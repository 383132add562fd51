#pragma once

#include <cstddef>
#include <string_view>

namespace spacemint {

/// True for a binary property list that is a plain tree: at most `maximumContainers` arrays, sets and
/// dictionaries, none of them part of two others or of itself. Parsers copy what is shared at every place
/// where it is used, so a few hundred bytes could otherwise fill any memory. Nothing else is checked.
bool isPlainBinaryPropertyList(std::string_view document, std::size_t maximumContainers);

}  // namespace spacemint
