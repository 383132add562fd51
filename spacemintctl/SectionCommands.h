#pragma once

#include "spacemintctl/Section.h"

#include <optional>
#include <string>

namespace spacemint::ctl {

struct SectionOptions {
  /// Which stored scan to look at; empty for the newest.
  std::string scan;
  /// Which earlier one to compare it with; empty for the one nearest to a day before.
  std::string since;
  std::optional<Bytes> minimum;
  std::size_t top = 10;
  bool json = false;
};

/// Answers one question.
int runSection(const Section& section, const SectionOptions& options);

/// Answers all of them on one page.
int runReport(const SectionOptions& options);

}  // namespace spacemint::ctl
