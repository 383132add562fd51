#include "core/tree/Coverage.h"

#include "core/base/AsciiText.h"

#include <algorithm>

namespace spacemint {

bool Unread::isAtOrBelow(std::string_view path) const {
  return std::ranges::any_of(paths,
                             [&](const std::string& item) { return spacemint::isAtOrBelow(item, path); });
}

const CoveredPlace* Coverage::placeOf(std::string_view path) const {
  const CoveredPlace* holder = nullptr;
  for (const CoveredPlace& covered : places) {
    const std::string& mountPoint = covered.place.mountPoint;
    if (isAtOrBelow(path, mountPoint) &&
        (holder == nullptr || mountPoint.size() > holder->place.mountPoint.size())) {
      holder = &covered;
    }
  }
  return holder;
}

}  // namespace spacemint
