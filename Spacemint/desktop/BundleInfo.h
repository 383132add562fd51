#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace spacemint {

/// What the product says of itself, in a property list that is installed with it. A text that is missing, or
/// is no text, is absent.
struct BundleInfo {
  std::optional<std::string> identifier;
  std::optional<std::string> displayName;
  std::optional<std::string> shortVersion;
  std::optional<std::string> version;

  /// All absent where the document is no dictionary.
  static BundleInfo parse(std::string_view document);

  /// Of the file at `path`; all absent where it cannot be read. Blocks.
  static BundleInfo load(const std::string& path);

  bool operator==(const BundleInfo&) const = default;
};

}  // namespace spacemint
