#pragma once

#include "core/base/Error.h"

#include <cstdint>
#include <string>
#include <utility>

namespace spacemint {

/// Why a clean-up, or a step of it, did not complete.
struct CleanupFailure {
  enum class Kind : std::uint8_t {
    /// The guard refused the path, or the item was not the confirmed one. Nothing was removed, except if an
    /// entry was refused after other entries of the folder had been removed.
    refused,
    /// The operating system or a tool failed.
    other,
    /// A permission is missing.
    needsFullDiskAccess,
    /// The user stopped the clean-up.
    stopped
  };

  Kind kind = Kind::other;
  /// The reason in words: "~/Documents is a protected folder", or a tool's error message.
  std::string message;
  /// The path that the message refers to; empty for a tool's message.
  std::string path = {};

  static CleanupFailure refused(std::string message, std::string path = {}) {
    return {Kind::refused, std::move(message), std::move(path)};
  }
  static CleanupFailure other(std::string message) { return {Kind::other, std::move(message)}; }
  static CleanupFailure stopped() { return {Kind::stopped, "stopped"}; }

  bool operator==(const CleanupFailure&) const = default;
};

namespace Cleanup {

/// The domain of errors of file managers that use their own error codes.
inline constexpr std::string_view fileManagerErrorDomain = "NSCocoaErrorDomain";

/// True if the error, or one of its underlying errors, is a missing permission.
bool isPermissionError(const Error& error);

}  // namespace Cleanup

}  // namespace spacemint
