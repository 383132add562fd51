#pragma once

#include "core/volume/Supply.h"

#include <string>

namespace spacemint {

/// The texts about space or files that run low. Any thread.
namespace SupplyText {

/// What runs low, without a figure: "Disk space is running low on backup". Not for the level `ok`.
std::string title(const Supply& supply);

/// What is left: "Only 9 GB left on backup."
std::string sentence(const Supply& supply, const std::string& locale);

}  // namespace SupplyText

}  // namespace spacemint
