#pragma once

#include "core/host/FolderListing.h"
#include "core/host/linux/FolderObserver.h"

#include <memory>

namespace spacemint {

/// The host's listing, with an observer that is told of every folder before its entries are read. The
/// observer must outlive it and what is opened from it.
std::unique_ptr<FolderListing> observedFolderListing(FolderObserver& observer);

}  // namespace spacemint
