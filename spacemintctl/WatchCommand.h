#pragma once

#include <string>

namespace spacemint::ctl {

/// Records the changes below a folder until SIGINT (Ctrl-C), SIGTERM or SIGHUP. Returns the exit code.
int runWatch(const std::string& path);

}  // namespace spacemint::ctl
