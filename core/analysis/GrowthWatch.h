#pragma once

#include "core/analysis/GrowthWindow.h"
#include "core/host/FileSizes.h"

#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace spacemint {

/// A place where space goes now, or is freed. Sizes are in bytes.
struct GrowthLine {
  std::string path;
  bool isDirectory = true;
  bool isFreed = false;
  /// True if something was added in the last ten seconds.
  bool isGoingOn = false;
  GrowthFigures figures;
  /// From the first growth to the last.
  std::chrono::seconds duration{0};
  /// Since the last growth.
  std::chrono::seconds quiet{0};

  Bytes perSecond() const { return figures.tenSeconds / 10; }
  bool operator==(const GrowthLine&) const = default;
};

/// What grows below a root, by what folders are found to hold when they are looked at again and again. Growth
/// and what is freed are added up apart. Pure: times and sizes are handed in, times never going backwards.
/// One thread at a time.
class GrowthWatch {
 public:
  using Time = GrowthWindow::Time;

  static constexpr std::size_t lineLimit = 8;
  /// A line comes when so much grew in a minute, or 1 % of the free space if that is less, at two refreshes
  /// running; one refresh is enough for ten times as much. It goes when less than `goneBelow` grew in ten
  /// minutes.
  static constexpr Bytes lineMinimum = 10'000'000;
  static constexpr Bytes goneBelow = 1'000'000;
  /// Beyond so many folders, those with the least growth count in their parents. What then changes in one of
  /// them before its next look is not noticed.
  static constexpr std::size_t folderLimit = 1'024;
  /// The files of a larger folder are not told apart.
  static constexpr std::size_t fileLimit = 4'096;

  explicit GrowthWatch(std::string root) : root_(std::move(root)) {}

  /// Takes in what is in the folder at `path` now. A file that was not there at the last look counts as
  /// growth if it was created after `lookedBefore`, the wall-clock time of the refresh before; otherwise it
  /// may have been moved here, or never have been looked at.
  void look(const std::string& path, const FolderContents& contents, Date lookedBefore, Time now);
  /// The folder at `path` cannot be listed any more.
  void remove(const std::string& path, Time now);
  /// Call after the looks of a refresh. `free`: the free space of the volume.
  void finish(Bytes free, Time now);

  /// The lines as of the last `finish`, most in the last minute first.
  const std::vector<GrowthLine>& lines() const { return lines_; }
  Bytes free() const { return free_; }
  /// How much of the volume's free space was lost; negative if it became more.
  const GrowthFigures& lost() const { return lost_; }
  /// What of `lost` no folder explains: removed but still open, or outside of the root. Not below 0.
  const GrowthFigures& elsewhere() const { return elsewhere_; }
  /// How long the free space lasts at the pace of the last minute, if that went on for a minute.
  std::optional<std::chrono::seconds> untilFull() const { return untilFull_; }

 private:
  struct GrowingFile {
    std::string name;
    GrowthWindow window;
  };
  struct Folder {
    // By inode. Empty in a folder with more than `fileLimit` files.
    std::unordered_map<std::uint64_t, Bytes> files;
    Bytes sum = 0;
    bool isKnown = false;
    GrowthWindow grown;
    GrowthWindow freed;
    // The files that grew most and are still there, by inode; few. A download is renamed at its end.
    std::map<std::uint64_t, GrowingFile> growing;
  };
  struct Shown {
    int refreshes = 0;
    Time first;
    Time last;
    bool isShown = false;
  };

  // A file that is no longer in a folder: freed, unless it is found elsewhere before the refresh ends.
  struct Departure {
    std::string folder;
    std::uint64_t inode = 0;
    Bytes size = 0;
  };

  std::optional<Bytes> changeOf(const Folder& folder, const FolderContents::File& file, Date lookedBefore);
  void lookAtSum(Folder& folder, const FolderContents& contents, Date lookedBefore, Time now);
  void lookAtFiles(const std::string& path, const FolderContents& contents, Date lookedBefore, Time now);
  void settleDepartures(Time now);
  static void grow(Folder& folder, const FolderContents::File& file, Bytes bytes, Time now);
  static void follow(Folder& folder, const FolderContents& contents);
  void mergeLeast(std::size_t count, Time now);
  void forget(Time now);
  std::vector<GrowthLine> explain(bool freed, Time now) const;
  void name(GrowthLine& line, Time now) const;
  std::vector<GrowthLine> chosenFrom(std::vector<GrowthLine> candidates, Time now);
  void show(std::vector<GrowthLine> chosen);
  void account(Bytes free, Time now);
  GrowthFigures total(bool freed, Time now) const;

  std::string root_;
  std::map<std::string, Folder> folders_;
  std::vector<Departure> departures_;
  // Files that a refresh found in another place, or for the first time.
  std::unordered_set<std::uint64_t> arrivals_;
  std::map<std::pair<bool, std::string>, Shown> shown_;
  std::vector<GrowthLine> lines_;
  GrowthWindow lostWindow_;
  GrowthWindow gainedWindow_;
  GrowthFigures lost_;
  GrowthFigures elsewhere_;
  Bytes free_ = 0;
  std::optional<Time> begun_;
  std::optional<Time> losingSince_;
  std::optional<std::chrono::seconds> untilFull_;
};

}  // namespace spacemint
