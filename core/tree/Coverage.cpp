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

ExcludedSum Coverage::excludedBelow(std::string_view folder) const {
  ExcludedSum sum;
  for (const LeftOut& item : leftOut) {
    if (item.kind != LeftOut::Kind::excluded || !isAtOrBelow(item.path, folder)) continue;
    ++sum.items;
    sum.size = saturatingAdd(sum.size, item.size.value_or(0));
    if (!item.size) ++sum.unknown;
  }
  return sum;
}

}  // namespace spacemint
