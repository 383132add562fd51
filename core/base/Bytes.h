#pragma once

#include <cstdint>
#include <limits>

namespace spacemint {

/// A count of bytes allocated on disk.
using Bytes = std::int64_t;

// Byte and file counts come from files, tools and file systems and may be any number. Sums and differences of
// counts therefore saturate: a result outside 64 bits becomes the nearest 64-bit number.

constexpr std::int64_t saturatingAdd(std::int64_t a, std::int64_t b) {
  using Limits = std::numeric_limits<std::int64_t>;
  std::int64_t sum = 0;
  if (!__builtin_add_overflow(a, b, &sum)) return sum;
  return b < 0 ? Limits::min() : Limits::max();
}

constexpr std::int64_t saturatingSubtract(std::int64_t a, std::int64_t b) {
  using Limits = std::numeric_limits<std::int64_t>;
  std::int64_t difference = 0;
  if (!__builtin_sub_overflow(a, b, &difference)) return difference;
  return b < 0 ? Limits::max() : Limits::min();
}

}  // namespace spacemint
