#include "core/volume/Permissions.h"

#include "core/host/ProtectedPlaces.h"

#include <algorithm>

namespace spacemint {

bool Permissions::hasFullDiskAccess() {
  return canOpenOne(protectedPlaces());
}

bool Permissions::canOpenOne(std::span<const std::string> places) {
  return std::ranges::any_of(places, canOpen);
}

}  // namespace spacemint
