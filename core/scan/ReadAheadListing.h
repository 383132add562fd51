#pragma once

#include "core/host/FolderListing.h"
#include "core/scan/ReadAheadDepth.h"

#include <functional>
#include <memory>

namespace spacemint {

/// A folder listing whose helper threads list subfolders before the walk that uses the listing opens them.
/// The walk's thread lists folders ahead, too, where it would wait for a helper.
///
/// The walk gets the same entries as from `inner`, in the same order. Reading ahead helps a walk that opens
/// every subfolder on the root's volume that it does not pass by, in reverse listing order; other walks work
/// too, but are not faster.
/// How many helpers work is found out (`ReadAheadDepth`). The number of folders, open handles and bytes that
/// are held ahead is bounded. If the process nevertheless runs out of file handles, the listing closes all
/// handles opened ahead and continues without helpers; no entry is lost. Only one thread may use the folders
/// opened from this listing. `inner` must outlive the listing.
class ReadAheadListing final : public FolderListing {
 public:
  /// Enough file handles for the walk and for all folders that helpers hold open.
  static constexpr std::size_t usualOpenFileLimit = 8'192;

  struct Limits {
    ReadAheadDepth::Limits depth = {};
    /// The number of file handles that the process may have; helpers use at most a quarter of it.
    std::size_t openFiles = usualOpenFileLimit;
  };

  /// The limits for folders on the disk that holds `root`.
  static Limits limitsFor(const std::string& root, std::size_t openFiles = usualOpenFileLimit);

  /// What the listing asks about the walk.
  struct WalkFacts {
    /// Asked by the walk's thread before each subfolder; while it answers false, the helpers rest.
    /// Empty if they never rest.
    std::function<bool()> isWanted = {};
    /// Whether the walk does not open the folder at this path, so that helpers need not list it. Asked by
    /// several threads at once. Empty if the walk opens every folder.
    std::function<bool(const std::string& path)> passesBy = {};
  };

  ReadAheadListing(FolderListing& inner, Limits limits, WalkFacts walk);

  std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string& root) override;
  std::vector<ListedPlace> places() const override { return inner_.places(); }
  std::vector<LeftOut> leftOut() const override { return inner_.leftOut(); }

 private:
  class Crew;
  class Folder;
  class LoneFolder;
  struct Record;

  FolderListing& inner_;
  Limits limits_;
  WalkFacts walk_;
};

}  // namespace spacemint
