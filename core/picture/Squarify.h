#pragma once

#include "core/picture/Box.h"

#include <span>
#include <vector>

namespace spacemint {

/// Divides `in` into a box for each of `sizes`, with areas in proportion to them and sides as equal as it
/// goes (a squarified treemap). `sizes` are largest first and above 0; the largest box is at the upper left.
/// Pure.
std::vector<Box> squarified(std::span<const double> sizes, const Box& in);

}  // namespace spacemint
