#pragma once

#include "core/host/FolderListing.h"
#include "core/host/VolumeTable.h"
#include "core/host/linux/HandleFacts.h"
#include "core/host/linux/MountTable.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// The mount points below a folder, as a tree of names. A scan looks up each name on its way down, so folders
/// without mounts below cost nothing.
struct MountTree {
  bool isMountPoint = false;
  bool isEntered = false;
  std::map<std::string, std::unique_ptr<MountTree>, std::less<>> below;

  const MountTree* child(std::string_view name) const;
  /// The node at a relative path; made if it does not exist.
  MountTree& at(std::string_view path);
};

/// Which mounts and subvolumes belong to a root. Every folder of a file system is reached once, however often
/// it is mounted.
class Territory {
 public:
  /// Whether an opened folder belongs to the root.
  enum class Verdict {
    inside,
    /// It is on another mount, or it is reached by another path.
    outside,
    snapshot,
  };

  /// The territory of the open folder `root`, from the current mounts.
  static Territory of(const FileHandle& root, const HandleFacts& facts);
  /// The same from the text of the mount table. `path` is the root's, without links. Pure.
  static Territory of(const std::string& path, const HandleFacts& facts, const std::vector<Mount>& mounts,
                      const std::vector<Volume>& volumes);

  /// `isMountPoint`: something is mounted at the path by which the folder was opened.
  Verdict verdict(const FileHandle& folder, const HandleFacts& facts, bool isMountPoint) const;

  /// The index in `places` of a mount that is entered; absent for others.
  std::optional<std::size_t> indexOf(std::uint64_t mountId) const;

  /// The entered mounts, the root's first.
  const std::vector<ListedPlace>& places() const { return places_; }
  /// The mounts that are not entered although they may take space on a disk, by path.
  const std::vector<LeftOut>& leftOut() const { return leftOut_; }
  const MountTree& mounts() const { return mounts_; }

 private:
  struct Line {
    std::uint64_t mountId = 0;
    FileIdentity top;
  };

  void enter(const Volume& volume, const VolumePlace& place);
  void leaveOutUnreachable(const std::vector<Mount>& mounts);
  bool isCounted(const Volume& volume, const VolumePlace& place) const;

  std::string path_;

  std::vector<ListedPlace> places_;
  // Parallel to `places_`.
  std::vector<Line> lines_;
  // The folders at which mounts are entered.
  std::set<FileIdentity> tops_;
  std::vector<LeftOut> leftOut_;
  MountTree mounts_;
};

}  // namespace spacemint
