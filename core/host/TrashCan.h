#pragma once

#include "core/host/Removal.h"

#include <expected>
#include <memory>
#include <string>

namespace spacemint {

/// The desktop's Trash, from which users can restore items. Functions block; any thread.
class TrashCan {
 public:
  TrashCan() = default;
  TrashCan(const TrashCan&) = delete;
  TrashCan& operator=(const TrashCan&) = delete;
  virtual ~TrashCan() = default;

  /// Moves an item to the Trash and returns its path there. Moves a symbolic link itself, not its target. On
  /// failure the item stays in its place.
  virtual std::expected<std::string, RemovalFailure> move(const RemovalTarget& target) = 0;
};

/// The Trash of this desktop.
std::unique_ptr<TrashCan> hostTrash();

}  // namespace spacemint
