#pragma once

#include "core/host/FileHandle.h"
#include "core/host/Removal.h"

#include <expected>
#include <string>

namespace spacemint {

/// The failure of a removal at `path`, with the reason in words. `folder` contains the item `name`; the
/// function reads the owner, mode and attributes of both to explain a refusal. An empty `name` means `folder`
/// itself; without a valid `folder` the reason follows from `errorNumber` alone.
std::unexpected<RemovalFailure> removalFailure(std::string path, int errorNumber,
                                               const FileHandle& folder = {}, const std::string& name = {});

}  // namespace spacemint
