#pragma once

namespace spacemint {

/// Gives memory that was freed back to the system, where the allocator keeps it. After a lot was freed; takes
/// some milliseconds. Any thread.
void giveBackFreedMemory();

}  // namespace spacemint
