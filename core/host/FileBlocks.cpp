#include "core/host/FileBlocks.h"

#include <algorithm>

namespace spacemint {

Bytes coveredBytes(std::vector<BlockRange> ranges) {
  std::ranges::sort(ranges);
  std::uint64_t covered = 0;
  std::uint64_t end = 0;
  for (const BlockRange& range : ranges) {
    if (range.end <= end) continue;
    covered += range.end - std::max(range.begin, end);
    end = range.end;
  }
  return static_cast<Bytes>(covered);
}

}  // namespace spacemint
