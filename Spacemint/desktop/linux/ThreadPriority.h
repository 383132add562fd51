#pragma once

namespace spacemint {

/// The calling thread gets a processor only when nobody else wants it. For the rest of its life.
void runWhenNobodyElseDoes();

/// What the calling thread is called in the system's tools; cut after 15 bytes.
void nameThread(const char* name);

}  // namespace spacemint
