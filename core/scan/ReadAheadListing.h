#pragma once

#include "core/host/FolderListing.h"

#include <memory>

namespace spacemint {

/// A listing that lists pending subfolders on helper threads ahead of the walk that uses it.
///
/// The walk gets the entries it would get from `inner`, in the same order. It is meant for a walk that opens
/// every subfolder on the root's own volume, last listed first; any other use is served just as well, but
/// not ahead. How far it runs ahead is bounded in folders and in memory. What is opened from it belongs to
/// one thread; `inner` must outlive it.
class ReadAheadListing final : public FolderListing {
 public:
  /// Two for each processor, four at least: one works while another waits for the disk. More of them keep a
  /// solid-state disk busier, and cost more than that gains once everything is in the cache.
  static unsigned defaultThreads();

  explicit ReadAheadListing(FolderListing& inner, unsigned threads = defaultThreads());

  std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string& root) override;

 private:
  class Crew;
  class Folder;
  struct Record;

  FolderListing& inner_;
  unsigned threads_;
};

}  // namespace spacemint
