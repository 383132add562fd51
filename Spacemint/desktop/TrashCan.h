#pragma once

#include "core/base/Error.h"

#include <expected>
#include <string>

namespace spacemint {

/// The desktop's Trash, from which the user can restore items. Blocks; any thread.
class TrashCan {
 public:
  TrashCan() = default;
  TrashCan(const TrashCan&) = delete;
  TrashCan& operator=(const TrashCan&) = delete;
  virtual ~TrashCan() = default;

  /// Moves one item to the Trash and returns its new path. A symbolic link is moved itself. If this fails,
  /// the item is still at its place.
  virtual std::expected<std::string, Error> move(const std::string& path) = 0;
};

}  // namespace spacemint
