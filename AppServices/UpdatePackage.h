#pragma once

#include "AppServices/UpdateChoice.h"

#include <array>
#include <expected>
#include <string>

namespace spacemint {

/// The Ed25519 key that a product's updates are signed for.
using UpdateKey = std::array<unsigned char, 32>;

/// Whether the file at `path` is the update: its length, its signature, and only then what the package says
/// of itself, so that an old or a foreign package is not taken under a new name. Blocks; any thread.
std::expected<void, UpdateProblem> verifyPackage(const std::string& path, const Update& update,
                                                 const UpdateKey& key, const UpdateTarget& target);

}  // namespace spacemint
