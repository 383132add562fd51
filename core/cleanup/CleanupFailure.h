#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace spacemint {

/// Why a clean-up ended without doing all it was meant to.
struct CleanupFailure {
  enum class Kind : std::uint8_t {
    /// The guard refused a path, or it is unfit. `message` is complete and shown as it is.
    refused,
    /// `message` is the reason in the words of the system or of a tool.
    other,
    /// The right to do it is missing.
    needsFullDiskAccess,
    /// The user does not allow this application to control the file manager.
    needsFinderPermission
  };

  Kind kind = Kind::other;
  /// Empty for the last two kinds.
  std::string message;

  static CleanupFailure refused(std::string message) { return {Kind::refused, std::move(message)}; }
  static CleanupFailure other(std::string message) { return {Kind::other, std::move(message)}; }
  static CleanupFailure needsFullDiskAccess() { return {Kind::needsFullDiskAccess, {}}; }
  static CleanupFailure needsFinderPermission() { return {Kind::needsFinderPermission, {}}; }

  bool operator==(const CleanupFailure&) const = default;
};

}  // namespace spacemint
