#pragma once

#include "core/cleanup/CleanupFailure.h"

#include <optional>
#include <string>
#include <string_view>

namespace spacemint {

/// How the run of a tool that cleans up ended.
struct ToolOutcome {
  /// The program as it was asked for; a path counts by its last part.
  std::string tool;
  /// False when it was not found or could not be started.
  bool started = false;
  bool timedOut = false;
  int status = 0;
  std::string output = {};
  std::string error = {};
};

/// Why the tool did not do what it was run for; absent when it did.
std::optional<CleanupFailure> toolFailure(const ToolOutcome& outcome);

/// The last line of a text that is not empty, without blanks at its ends; "Unknown error" where there is
/// none.
std::string lastLine(std::string_view text);

}  // namespace spacemint
