#pragma once

#include "core/host/FolderListing.h"

#include <memory>

namespace spacemint {

/// A listing that lists pending subfolders on helper threads ahead of the walk that uses it.
///
/// The walk gets the entries it would get from `inner`, in the same order. It is meant for a walk that opens
/// every subfolder on the root's own volume, last listed first; any other use is served just as well, but
/// not ahead. How far the helpers run ahead is bounded in folders, open handles and memory. Where the process
/// runs out of handles all the same, everything opened ahead is closed and the walk goes on alone: no entry
/// is lost. Folders opened from this listing belong to one thread; `inner` must outlive it.
class ReadAheadListing final : public FolderListing {
 public:
  /// Two threads for each processor, at least four: one works while another waits for the disk. More threads
  /// keep a solid-state disk busier, and cost more than they gain once everything is in the cache.
  static unsigned defaultThreads();

  /// A quarter of `openFileLimit`, the number of handles that the process may hold, may be opened ahead.
  explicit ReadAheadListing(FolderListing& inner, unsigned threads = defaultThreads(),
                            std::size_t openFileLimit = usualOpenFileLimit);

  /// Enough handles for the walk and for everything ahead.
  static constexpr std::size_t usualOpenFileLimit = 8'192;

  std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string& root) override;

 private:
  class Crew;
  class Folder;
  struct Record;

  FolderListing& inner_;
  unsigned threads_;
  std::size_t openFileLimit_;
};

}  // namespace spacemint
