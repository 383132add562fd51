#pragma once

#include "AppServices/SystemFacts.h"
#include "AppServices/UpdateFeed.h"

#include <QUrl>

#include <array>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// Why there is no update.
enum class UpdateProblem : std::uint8_t {
  /// The product has no key to check updates with.
  noKey,
  feedUnreachable,
  feedUnreadable,
  /// What the feed says of an update cannot be.
  feedRefused,
  downloadFailed,
  /// The file is not the one that the feed describes.
  fileRefused,
  signatureRefused,
  /// The package is of another product, version or machine.
  packageRefused,
  cannotStore,
};

/// A release that would be an update, if its file turns out to be what the feed says.
struct Update {
  std::string version = {};
  std::string shownVersion = {};
  QUrl url = {};
  /// A plain name without any folder.
  std::string fileName = {};
  std::int64_t length = 0;
  std::array<unsigned char, 64> signature = {};
};

/// For whom an update is chosen.
struct UpdateTarget {
  std::string version = {};
  /// The name of the product's package.
  std::string package = {};
  SystemFacts system = {};
};

/// The longest file that is downloaded, in bytes.
inline constexpr std::int64_t largestUpdate = 200'000'000;

/// The newest item above the target's version, in the order of Debian's packages, that its system can take:
/// absent where there is none, refused where that item is incomplete or not what it must be. An update's file
/// is called PACKAGE_VERSION[-REVISION]_ARCHITECTURE.deb; items for other machines are left out.
std::expected<std::optional<Update>, UpdateProblem> newestUpdate(const std::vector<UpdateItem>& items,
                                                                 const UpdateTarget& target);

}  // namespace spacemint
