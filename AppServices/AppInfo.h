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

  /// Of the property list at `path`. Blocks.
  static AppInfo load(const std::string& path);
};

}  // namespace spacemint
