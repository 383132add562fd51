#pragma once

#include "core/base/Error.h"

#include <cstdint>
#include <string>
#include <utility>

namespace spacemint {

/// Why a clean-up ended without doing all that it was meant to do.
struct CleanupFailure {
  enum class Kind : std::uint8_t {
    /// The guard or the last look at the item refused it. Nothing of this step was done, except where a
    /// folder
    /// was emptied up to an entry that may not go.
    refused,
    /// The system or a tool failed.
    other,
    /// A right is missing.
    needsFullDiskAccess,
    /// The user stopped it.
    stopped
  };

  Kind kind = Kind::other;
  /// The reason in words: "~/Documents is a protected folder", or what a tool said.
  std::string message;
  /// The path that the reason is about; empty for a tool.
  std::string path = {};

  static CleanupFailure refused(std::string message, std::string path = {}) {
    return {Kind::refused, std::move(message), std::move(path)};
  }
  static CleanupFailure other(std::string message) { return {Kind::other, std::move(message)}; }
  static CleanupFailure stopped() { return {Kind::stopped, "stopped"}; }

  bool operator==(const CleanupFailure&) const = default;
};

namespace Cleanup {

/// Domain of errors of file managers that number them in their own way.
inline constexpr std::string_view fileManagerErrorDomain = "NSCocoaErrorDomain";

/// Whether the error, or one that it rests on, is a missing right.
bool isPermissionError(const Error& error);

}  // namespace Cleanup

}  // namespace spacemint
