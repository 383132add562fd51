#pragma once

#include <optional>
#include <string>

namespace spacemint {

/// What the product says of itself in its information dictionary, a property list that is installed with it.
struct AppInfo {
  /// Absent if the program runs without a dictionary, as in a build that is not installed. Then there are no
  /// services.
  std::optional<std::string> identifier = {};
  std::string name = {};
  std::string version = {};
  /// The product's name in the usage report and the message feed.
  std::optional<std::string> slug = {};
  /// The URL of the folder with the message feed.
  std::optional<std::string> site = {};
  /// The server that receives usage reports: a host name, or a URL whose path is ignored. Without it none is
  /// sent.
  std::optional<std::string> usageHost = {};
  /// The address of the update feed. Without it there are no updates.
  std::optional<std::string> updateFeed = {};
  /// The public Ed25519 key of updates, in Base64. Without it no update is accepted.
  std::optional<std::string> updateKey = {};

  /// Reads the property list at `path`. Fields that are missing or no text are absent or empty; so are all if
  /// the file cannot be read. Blocks; any thread.
  static AppInfo load(const std::string& path);
};

}  // namespace spacemint
