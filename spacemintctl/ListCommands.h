#pragma once

#include <cstddef>
#include <string>

namespace spacemint::ctl {

/// Options of the commands "files" and "folders".
struct ListOptions {
  /// The date of the stored scan, as for `storedScan`; empty for the newest scan.
  std::string scan;
  /// The folder to list; empty for the root of the scan.
  std::string path;
  std::size_t top = 50;
  bool json = false;
  /// Of "folders": what has the most files comes first.
  bool byCount = false;
};

/// Prints the largest files of a stored scan; returns the exit code.
int runFiles(const ListOptions& options);

/// Prints the contents of a folder in a stored scan, largest first; returns the exit code.
int runFolders(const ListOptions& options);

}  // namespace spacemint::ctl
