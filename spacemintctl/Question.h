#pragma once

#include <string>

namespace spacemint::ctl {

/// Whether there is somebody to ask: a terminal to write to and to read from.
bool canAsk();

/// Asks on the terminal and waits; true for a yes and for nothing else. What was typed before is dropped.
bool ask(const std::string& question);

}  // namespace spacemint::ctl
