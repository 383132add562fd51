#pragma once

#include "core/cleanup/CleanupPlan.h"

#include <optional>
#include <string>
#include <vector>

namespace spacemint::ctl {

struct RemovalItem {
  std::string path;
  Bytes size = 0;
};

/// What can be done with items that someone wants to remove. Both plans hold the identities of the items as
/// they are now.
struct RemovalOffer {
  /// Absent if no item may be moved to the Trash, or all are in it already.
  std::optional<CleanupPlan> toTrash;
  /// Absent if no item may be removed.
  std::optional<CleanupPlan> forGood;
  /// Why items are left out, a sentence for each.
  std::vector<std::string> refused;
  /// What is lost besides the items, a sentence for each.
  std::vector<std::string> warnings;
};

/// Items in a folder that is among the items too are left out without a word. Fast; any thread.
RemovalOffer offerRemoval(std::vector<RemovalItem> items, const CleanupContext& context, Date now);

}  // namespace spacemint::ctl
