#pragma once

#include "spacemintctl/Section.h"

#include <optional>
#include <string>

namespace spacemint::ctl {

struct SectionOptions {
  /// The date of the stored scan, as for `storedScan`; empty for the newest scan.
  std::string scan;
  /// The date of the scan to compare with; empty for the scan nearest to a day earlier.
  std::string since;
  std::optional<Bytes> minimum;
  std::size_t top = 10;
  bool json = false;
  /// The file for a picture in place of the report; empty for none.
  std::string svg = {};
};

/// Prints a section; returns the exit code.
int runSection(const Section& section, const SectionOptions& options);

/// Prints all sections, or writes the picture of the scan; returns the exit code.
int runReport(const SectionOptions& options);

}  // namespace spacemint::ctl
