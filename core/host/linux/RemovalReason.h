#pragma once

#include "core/host/FileHandle.h"
#include "core/host/Removal.h"

#include <expected>
#include <string>

namespace spacemint {

/// The failure of a removal at `path`, in words. `folder` holds the item `name`, and both are looked at to
/// say why the system refused; an empty name stands for the folder itself. An invalid handle leaves out that
/// look.
std::unexpected<RemovalFailure> removalFailure(std::string path, int errorNumber,
                                               const FileHandle& folder = {}, const std::string& name = {});

}  // namespace spacemint
