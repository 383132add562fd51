#pragma once

#include <cerrno>

namespace spacemint {

/// What an error of `OpenFolder` (an errno) means. Any thread.

/// The item no longer exists, or another kind of item is in its place.
constexpr bool isGone(int error) {
  return error == ENOENT || error == ENOTDIR || error == ELOOP;
}

/// The item is gone, or the listing leaves it out because it is on another volume.
constexpr bool isGoneOrElsewhere(int error) {
  return isGone(error) || error == EXDEV;
}

}  // namespace spacemint
