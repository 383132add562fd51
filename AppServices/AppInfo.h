#pragma once

#include <optional>
#include <string>

namespace spacemint {

/// What the services know of the product they are in, from its information dictionary.
struct AppInfo {
  /// Absent where the program runs without a dictionary; then there are no services.
  std::optional<std::string> identifier = {};
  std::string name = {};
  std::string version = {};
  /// The product's name in the usage report and the message feed.
  std::optional<std::string> slug = {};
  /// Where the message feed lies.
  std::optional<std::string> site = {};
  /// Who takes usage reports: a host's name, or a URL whose path is not used. Without it none is sent.
  std::optional<std::string> usageHost = {};
  /// The address of the update feed. Without it there are no updates.
  std::optional<std::string> updateFeed = {};
  /// The Ed25519 key that updates are signed for, in Base64. Without it none is accepted.
  std::optional<std::string> updateKey = {};

  /// Of the property list at `path`. Blocks.
  static AppInfo load(const std::string& path);
};

}  // namespace spacemint
