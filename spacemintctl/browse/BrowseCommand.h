#pragma once

#include <string>

namespace spacemint::ctl {

struct BrowseOptions {
  /// The folder; empty for the home folder.
  std::string path;
  /// An export to show in place of a folder; "-" for standard input.
  std::string importFile;
  bool readOnly = false;
  /// Root may remove too.
  bool allowRemoval = false;
  /// Only to say what prints JSON.
  bool json = false;
};

/// Runs `spacemintctl browse` and returns the exit code.
int runBrowse(const BrowseOptions& options);

/// Whether a first argument that is no command is a folder to browse.
bool namesFolder(const std::string& argument);

}  // namespace spacemint::ctl
