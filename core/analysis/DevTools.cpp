#include "core/analysis/DevTools.h"

#include <algorithm>
#include <functional>

namespace spacemint {

std::vector<DevTools::FoundCleanup> DevTools::cleanups(const CleanupsArguments& arguments) {
  const PlaceFinder finder{arguments.in, arguments.home, arguments.environment};
  std::vector<FoundCleanup> found;
  for (const CleanupTarget& target : cleanups()) {
    const auto places = finder.find(target.place);
    const auto largest = std::ranges::max_element(
        places, {}, [](const PlaceFinder::Found& place) { return place.node->size; });
    if (largest == places.end() || largest->node->size < arguments.minimum) continue;
    found.push_back({&target, largest->path, largest->node->size});
  }
  std::ranges::stable_sort(found, std::greater{}, &FoundCleanup::size);
  return found;
}

}  // namespace spacemint
