#pragma once

#include "AppServices/UpdateChoice.h"

#include <cstdint>
#include <string>

namespace spacemint {

/// How far the search for an update is.
struct UpdateState {
  enum class Phase : std::uint8_t { idle, checking, downloading, verifying };
  enum class Result : std::uint8_t { none, upToDate, found, ready, failed };

  Phase phase = Phase::idle;
  /// Of the last search.
  Result result = Result::none;
  UpdateProblem problem = {};
  /// The version that was found.
  std::string version = {};
  /// Whether a person waits for the answer. What goes on by itself is only told when it found something.
  bool isAsked = false;
};

/// The state as one sentence; empty where there is nothing to say.
std::string updateStatus(const UpdateState& state, const std::string& appName);

}  // namespace spacemint
