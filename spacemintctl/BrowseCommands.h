#pragma once

#include <cstddef>
#include <string>

namespace spacemint::ctl {

/// Which stored scan to read, and how to answer.
struct BrowseOptions {
  /// Empty for the newest scan.
  std::string scan;
  /// The folder to look into; empty for the root of the scan.
  std::string path;
  std::size_t top = 50;
  bool json = false;
};

/// Names the largest files of a stored scan.
int runFiles(const BrowseOptions& options);

/// Names what is in one folder of a stored scan, largest first.
int runFolders(const BrowseOptions& options);

}  // namespace spacemint::ctl
