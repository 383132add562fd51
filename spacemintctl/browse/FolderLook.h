#pragma once

#include "core/base/Bytes.h"
#include "core/base/Date.h"
#include "core/host/FolderListing.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace spacemint::ctl {

/// What the disk says of an item that a scan does not keep.
struct ItemLook {
  EntryType type = EntryType::other;
  /// How many names a file has.
  std::uint32_t links = 1;
  /// The bytes of a file's content.
  Bytes length = 0;
  /// When a folder's list of names last changed.
  std::optional<Date> modified = {};
};

/// By the names of the items.
using FolderLook = std::unordered_map<std::string, ItemLook>;

/// Looks at the items in a folder that have these names. Blocks; any thread.
FolderLook lookInto(const std::string& folder, const std::unordered_set<std::string>& names);

}  // namespace spacemint::ctl
