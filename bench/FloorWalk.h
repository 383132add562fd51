#pragma once

#include <cstdint>
#include <string>

namespace spacemint::bench {

/// What no scanner can do without: every folder opened and listed with getdents64 into 256 KiB, every other
/// entry asked for with statx. One thread, nothing kept but two sums; hard links are counted at each name.
struct FloorSums {
  std::uint64_t files = 0;
  std::uint64_t blocks = 0;
};
FloorSums floorWalk(const std::string& root);

}  // namespace spacemint::bench
