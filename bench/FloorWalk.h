#pragma once

#include <cstdint>
#include <string>

namespace spacemint::bench {

/// The system calls that every scanner needs: opens every folder, lists it with getdents64 into a buffer of
/// 256 KiB, and calls statx for every other entry. Uses one thread and keeps only two sums; counts a file at
/// each of its hard links.
struct FloorSums {
  std::uint64_t files = 0;
  std::uint64_t blocks = 0;
};
FloorSums floorWalk(const std::string& root);

}  // namespace spacemint::bench
