#pragma once

#include <string>

namespace spacemint::ctl {

/// Records what changes below a folder until it is told to end (Ctrl-C, SIGTERM, SIGHUP).
int runWatch(const std::string& path);

}  // namespace spacemint::ctl
