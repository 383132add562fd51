#pragma once

#include "Spacemint/model/WarningState.h"
#include "core/volume/VolumeStatus.h"

#include <optional>
#include <string>

namespace spacemint {

/// What the item of the status area says. Any thread.
struct StatusText {
  /// Empty, or the free space after a space that keeps it off the icon.
  std::string title;
  std::string toolTip;

  bool operator==(const StatusText&) const = default;
};

struct StatusFacts {
  SpaceLevel level = SpaceLevel::ok;
  /// Absent while the volume cannot be read.
  std::optional<VolumeStatus> volume;
  /// The user wants the free space beside the icon; when space is low it is there in any case.
  bool showsFreeSpace = false;
  /// Of ICU.
  std::string locale;

  bool operator==(const StatusFacts&) const = default;
};

StatusText statusText(const StatusFacts& facts);

/// The free space that the application's icon in a dock is marked with; absent where it is not marked.
std::optional<Bytes> badgeOf(const StatusFacts& facts);

}  // namespace spacemint
