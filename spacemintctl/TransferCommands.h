#pragma once

#include "core/history/NcduFormat.h"

#include <cstddef>
#include <string>

namespace spacemint::ctl {

struct ExportOptions {
  /// A date as for `storedScan`; empty for the newest scan.
  std::string scan;
  /// The file to write; empty or "-" for standard output.
  std::string file;
};

struct ImportOptions {
  /// The file to read; "-" for standard input.
  std::string file;
  std::size_t top = 10;
  bool json = false;
};

/// Runs `spacemintctl export` and returns the exit code.
int runExport(const ExportOptions& options);
/// Runs `spacemintctl import` and returns the exit code. Stores nothing: the scan is of another computer, and
/// nothing of it can be cleaned here.
int runImport(const ImportOptions& options);

/// Writes a scan for other programs to `file`, or to standard output for "-"; prints the reason of a failure
/// and returns false.
bool exportScan(const Snapshot& snapshot, const std::string& file);

/// The text of a scan for other programs.
std::string exported(const Snapshot& snapshot);

/// Reads a scan of this or another program from `file`, or from standard input for "-".
std::expected<NcduFormat::Imported, Error> importedFrom(const std::string& file);

}  // namespace spacemint::ctl
