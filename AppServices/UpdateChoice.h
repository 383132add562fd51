#pragma once

#include "AppServices/SystemFacts.h"

#include <QByteArray>
#include <QUrl>

#include <algorithm>
#include <array>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// One release as the update feed describes it. Nothing of it is checked.
struct UpdateItem {
  std::string version = {};
  /// The version to show to people.
  std::string shortVersion = {};
  std::string minimumSystemVersion = {};
  std::string url = {};
  std::string length = {};
  /// An Ed25519 signature of the file, in Base64.
  std::string signature = {};

  bool operator==(const UpdateItem&) const = default;
};

/// Reads the releases of an RSS document: each enclosure of an item, with its attributes in the namespace
/// http://www.andymatuschak.org/xml-namespaces/sparkle. Absent if the document is malformed, has a document
/// type (which could define entities), has more than `largestUpdateFeed` bytes, or is deeper than 32
/// elements. Any thread.
std::optional<std::vector<UpdateItem>> parseUpdateFeed(std::string_view document);
inline constexpr std::size_t largestUpdateFeed = 1'000'000;

/// Why an update cannot be found, downloaded or installed.
enum class UpdateProblem : std::uint8_t {
  /// The product has no key to check updates with.
  noKey,
  feedUnreachable,
  feedUnreadable,
  /// The feed's entry of an update is incomplete or invalid.
  feedRefused,
  downloadFailed,
  /// The file has not the length that the feed says.
  fileRefused,
  signatureRefused,
  /// The package is for another product, version or machine.
  packageRefused,
  cannotStore,
  /// No program of the desktop opened the package.
  noInstaller,
};

/// A release that is an update, provided that its file is what the feed says. `verifyPackage` checks the
/// file.
struct Update {
  std::string version = {};
  std::string shownVersion = {};
  QUrl url = {};
  /// A file name without a folder.
  std::string fileName = {};
  std::int64_t length = 0;
  std::array<unsigned char, 64> signature = {};
};

/// What an update is chosen for.
struct UpdateTarget {
  std::string version = {};
  /// The name of the product's package.
  std::string package = {};
  SystemFacts system = {};
};

/// The largest file that is downloaded, in bytes.
inline constexpr std::int64_t largestUpdate = 200'000'000;

/// The newest item that is newer than the target's version, in dpkg's order of versions, and runs on its
/// system. Absent if there is none; an error if that item is incomplete or invalid. The file of an update is
/// named PACKAGE_VERSION[-REVISION]_ARCHITECTURE.deb; items for other machines are left out. Any thread.
std::expected<std::optional<Update>, UpdateProblem> newestUpdate(const std::vector<UpdateItem>& items,
                                                                 const UpdateTarget& target);

/// The N bytes that a Base64 text stands for; absent for any other text.
template <std::size_t N>
std::optional<std::array<unsigned char, N>> bytesOfBase64(const std::string& text) {
  const auto result = QByteArray::fromBase64Encoding(QByteArray::fromStdString(text),
                                                     QByteArray::AbortOnBase64DecodingErrors);
  if (!result || result.decoded.size() != static_cast<qsizetype>(N)) return {};
  std::array<unsigned char, N> bytes{};
  std::ranges::copy(result.decoded, bytes.begin());
  return bytes;
}

}  // namespace spacemint
