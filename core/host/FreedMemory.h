#pragma once

namespace spacemint {

/// Returns freed memory from the allocator to the operating system. Call it after freeing a lot; takes some
/// milliseconds. Any thread.
void giveBackFreedMemory();

}  // namespace spacemint
