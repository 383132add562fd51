#pragma once

#include "AppServices/UpdateChoice.h"

#include <array>
#include <expected>
#include <string>

namespace spacemint {

/// The public Ed25519 key that verifies a product's updates.
using UpdateKey = std::array<unsigned char, 32>;

/// Verifies the file at `path`: its length, its signature, and then the name, version and architecture in the
/// package, so that a signed package of an older version or another product is refused. Blocks, up to 10
/// seconds for dpkg-deb; any thread.
std::expected<void, UpdateProblem> verifyPackage(const std::string& path, const Update& update,
                                                 const UpdateKey& key, const UpdateTarget& target);

}  // namespace spacemint
