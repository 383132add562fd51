#pragma once

namespace spacemint {

/// From now on the calling thread runs only when no other thread wants a processor.
void runWhenNobodyElseDoes();

/// Names the calling thread for the system's tools. The name is cut after 15 bytes.
void nameThread(const char* name);

}  // namespace spacemint
