#pragma once

#include "spacemintctl/ListCommands.h"

#include <string>
#include <vector>

namespace spacemint::ctl {

struct FindOptions : ListOptions {
  std::vector<std::string> words;
  /// Print only the paths, each with a null byte behind it, all of them.
  bool print0 = false;
};

/// Runs `spacemintctl find` and returns the exit code.
int runFind(const FindOptions& options);

/// Runs `spacemintctl kinds` and returns the exit code.
int runKinds(const ListOptions& options);

}  // namespace spacemint::ctl
