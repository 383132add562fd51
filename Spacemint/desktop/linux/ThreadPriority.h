#pragma once

namespace spacemint {

/// Gives the calling thread, and the threads it starts from now on, a low priority for processor and disk,
/// for the rest of their lives. On a busy system the thread still gets a small share of the processor, so
/// that it never holds a lock for long.
void runAtLowPriority();

/// Names the calling thread for the system's tools. Only the first 15 bytes are used.
void nameThread(const char* name);

}  // namespace spacemint
