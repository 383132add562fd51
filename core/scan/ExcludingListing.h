#pragma once

#include "core/host/FolderListing.h"
#include "core/scan/Excludes.h"

#include <memory>

namespace spacemint {

/// A folder listing without what the user excludes. Tells `inner` which subfolders nobody opens, and reports
/// these, and the files of at least `minNodeSize`, as left out. Both arguments must outlive the listing.
class ExcludingListing final : public FolderListing {
 public:
  ExcludingListing(FolderListing& inner, const Excludes& excludes, Bytes minNodeSize);
  ~ExcludingListing() override;

  std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string& root) override;
  std::vector<ListedPlace> places() const override { return inner_.places(); }
  std::vector<LeftOut> leftOut() const override;

 private:
  class Folder;
  struct Shared;

  FolderListing& inner_;
  std::shared_ptr<Shared> shared_;
};

}  // namespace spacemint
