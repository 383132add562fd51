#pragma once

#include "core/host/Removal.h"

#include <expected>
#include <memory>
#include <string>

namespace spacemint {

/// The Trash of the desktop, from which items can be restored. Blocks; any thread.
class TrashCan {
 public:
  TrashCan() = default;
  TrashCan(const TrashCan&) = delete;
  TrashCan& operator=(const TrashCan&) = delete;
  virtual ~TrashCan() = default;

  /// Moves one item there, a link as a link; returns its path in the Trash. On failure the item is where it
  /// was.
  virtual std::expected<std::string, RemovalFailure> move(const RemovalTarget& target) = 0;
};

/// The Trash of this system.
std::unique_ptr<TrashCan> hostTrash();

}  // namespace spacemint
