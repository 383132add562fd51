#pragma once

#include "core/host/FolderListing.h"

#include <memory>

namespace spacemint {

/// A folder listing whose helper threads list subfolders before the walk that uses the listing opens them.
///
/// The walk gets the same entries as from `inner`, in the same order. Reading ahead helps a walk that opens
/// every subfolder on the root's volume, in reverse listing order; other walks work too, but are not faster.
/// The number of folders, open handles and bytes that are held ahead is bounded. If the process nevertheless
/// runs out of file handles, the listing closes all handles opened ahead and continues without helpers; no
/// entry is lost. Only one thread may use the folders opened from this listing. `inner` must outlive the
/// listing.
class ReadAheadListing final : public FolderListing {
 public:
  /// Two threads for each processor, but at least 4 and at most 16: one thread computes while another waits
  /// for the disk. More threads would keep a solid-state disk busier, but cost more than they gain when the
  /// folders are cached.
  static unsigned defaultThreads();

  /// `openFileLimit` is the number of file handles that the process may have; helpers use at most a quarter
  /// of it.
  explicit ReadAheadListing(FolderListing& inner, unsigned threads = defaultThreads(),
                            std::size_t openFileLimit = usualOpenFileLimit);

  /// Enough file handles for the walk and for all folders that helpers hold open.
  static constexpr std::size_t usualOpenFileLimit = 8'192;

  std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string& root) override;
  std::vector<ListedPlace> places() const override { return inner_.places(); }
  std::vector<LeftOut> leftOut() const override { return inner_.leftOut(); }

 private:
  class Crew;
  class Folder;
  class LoneFolder;
  struct Record;

  FolderListing& inner_;
  unsigned threads_;
  std::size_t openFileLimit_;
};

}  // namespace spacemint
