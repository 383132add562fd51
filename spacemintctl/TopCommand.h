#pragma once

#include <string>

namespace spacemint::ctl {

struct TopOptions {
  std::string path;
  bool json = false;
};

/// Shows what grows below a folder every two seconds, until "q" or Ctrl-C. On a terminal as a page that is
/// drawn anew; otherwise as lines, or as a JSON object for each refresh. Asks the recorder of the folder, and
/// records itself if there is none. Returns the exit code.
int runTop(const TopOptions& options);

}  // namespace spacemint::ctl
