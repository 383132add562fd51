#pragma once

#include "core/base/Error.h"

#include <expected>
#include <string>

namespace spacemint {

/// The desktop's Trash, from which things can be taken back. Blocks; any thread.
class TrashCan {
 public:
  TrashCan() = default;
  TrashCan(const TrashCan&) = delete;
  TrashCan& operator=(const TrashCan&) = delete;
  virtual ~TrashCan() = default;

  /// Moves one item there, a link as a link; the path at which it lies now. Where that fails the item is
  /// where it was.
  virtual std::expected<std::string, Error> move(const std::string& path) = 0;
};

}  // namespace spacemint
