#pragma once

#include <cstdint>
#include <cstdlib>

namespace spacemint {

/// A count of bytes allocated on disk.
using Bytes = std::int64_t;

/// Sum of two byte or file counts. An overflow is a programming error and stops the process.
constexpr std::int64_t checkedAdd(std::int64_t a, std::int64_t b) {
  std::int64_t sum = 0;
  if (__builtin_add_overflow(a, b, &sum)) std::abort();
  return sum;
}

/// Difference of two byte or file counts. An overflow is a programming error and stops the process.
constexpr std::int64_t checkedSubtract(std::int64_t a, std::int64_t b) {
  std::int64_t difference = 0;
  if (__builtin_sub_overflow(a, b, &difference)) std::abort();
  return difference;
}

}  // namespace spacemint
