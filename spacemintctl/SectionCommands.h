#pragma once

#include "spacemintctl/Section.h"

#include <optional>
#include <string>

namespace spacemint::ctl {

struct SectionOptions {
  /// Which stored scan to look at; empty for the newest.
  std::string scan;
  /// The earlier scan to compare with; empty for the scan nearest to a day before.
  std::string since;
  std::optional<Bytes> minimum;
  std::size_t top = 10;
  bool json = false;
};

/// Prints one section; answers the exit code.
int runSection(const Section& section, const SectionOptions& options);

/// Prints all sections on one page; answers the exit code.
int runReport(const SectionOptions& options);

}  // namespace spacemint::ctl
