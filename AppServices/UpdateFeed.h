#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// One release in the update feed, as it is written there and not yet believed.
struct UpdateItem {
  std::string version = {};
  /// How people read the version.
  std::string shortVersion = {};
  std::string minimumSystemVersion = {};
  std::string url = {};
  std::string length = {};
  /// An Ed25519 signature of the file, in Base64.
  std::string signature = {};

  bool operator==(const UpdateItem&) const = default;
};

/// The items with an enclosure of an RSS document, whose attributes in the namespace
/// http://www.andymatuschak.org/xml-namespaces/sparkle say what they are. Absent for what is no such
/// document, and for one with a document type (and so with entities), of more than `largestUpdateFeed` bytes
/// or deeper than 32 elements.
std::optional<std::vector<UpdateItem>> parseUpdateFeed(std::string_view document);
inline constexpr std::size_t largestUpdateFeed = 1'000'000;

}  // namespace spacemint
