#pragma once

#include "Spacemint/desktop/Notifier.h"
#include "core/analysis/Changes.h"
#include "core/volume/SpaceLevel.h"
#include "core/volume/VolumeStatus.h"

#include <vector>

namespace spacemint {

/// What notifications say.
namespace WarningText {

struct Arguments {
  const VolumeStatus& volume;
  SpaceLevel level = SpaceLevel::low;
  const std::vector<Growth>& growth;
  std::string_view home;
  const std::string& locale;
};

Notification warning(const Arguments& arguments);

/// Shows the user that notifications arrive.
Notification test(std::int64_t thresholdGB);

}  // namespace WarningText

}  // namespace spacemint
