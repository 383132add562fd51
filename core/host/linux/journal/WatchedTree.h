#pragma once

#include "core/host/EventJournal.h"
#include "core/host/linux/FolderOpening.h"
#include "core/host/linux/HandleFacts.h"
#include "core/host/linux/Territory.h"
#include "core/host/linux/journal/EventClock.h"
#include "core/host/linux/journal/EventQueue.h"
#include "core/host/linux/journal/FolderMap.h"
#include "core/host/linux/journal/MeasuredAnswer.h"
#include "core/host/linux/journal/MountPoints.h"

#include <chrono>
#include <functional>
#include <map>
#include <optional>

namespace spacemint {

/// Keeps the map of the watched folders correct while the disk changes, and knows what changed since when.
///
/// An event is about the past: when it is handled, its folder may have another path, and its name may belong
/// to another folder. So an event is only a hint where to look. To find out what is at a place, the tree
/// opens it and watches it again, because the same folder always gets the same watch number. One thread at a
/// time.
class WatchedTree {
 public:
  using Clock = std::chrono::steady_clock;
  using Id = FolderMap::Id;

  struct Parts {
    std::string root;
    EventQueue& queue;
    EventClock& clock;
    /// The largest number of watches; 0 for what the event source recommends.
    std::size_t watchLimit = 0;
    /// Polled during crawls; true abandons them.
    std::function<bool()> shouldStop;
  };

  /// How long a moved-out folder keeps its watch, waiting for the matching move-in.
  static constexpr std::chrono::milliseconds moveTime{200};
  /// The largest number of folders that an answer names.
  static constexpr std::size_t answerLimit = 100'000;
  /// A file system may decide so long after a write how many blocks a file has, and no event reports it.
  static constexpr std::chrono::seconds settlingTime{60};
  /// So many folders with hard links are listed for every measured answer, because a change through a name in
  /// another folder causes no event. The others wait for the next full scan.
  static constexpr std::size_t linkedLimit = 1'000;

  explicit WatchedTree(Parts parts) : parts_(std::move(parts)) { reset(); }

  /// Forgets all folders. Until `begin`, the error is `settingUp`.
  void reset();
  /// Begins with the open root, which is not listed yet. False, with the error set, when it cannot be
  /// recorded.
  bool begin(const FileHandle& root);
  /// Watches everything below the root. `root` is the handle that was given to `begin`.
  void crawlFromRoot(FileHandle root);

  FolderRef rootRef() const { return map_.refTo(map_.root()); }
  /// A scan opened this folder and watched it (or failed to, with an errno), and lists it next. Changes made
  /// in between will be in the listing.
  FolderRef adopt(FolderRef parentRef, std::string_view name, std::expected<int, int> added);
  /// A scan could not open this folder.
  void adoptClosed(FolderRef parentRef, std::string_view name);
  /// A scan listed this folder to its end after `adopt`.
  void adoptListed(FolderRef folder, const FolderSum& sum);
  /// A scan could not list this folder to its end.
  void adoptUnlisted(FolderRef folder);
  /// True while a scan crawls: it may have watched folders that it has not reported yet.
  void setScanning(bool isScanning) { isScanning_ = isScanning; }

  void handle(const FolderEvent& event);
  /// Call when the descriptor of `mounts` became ready. It reports each change only once.
  void noticeMounts() { mountsMayHaveChanged_ = true; }
  /// Looks at the places that events pointed at. Call when all events have been handled.
  void settle(Clock::time_point now);
  /// True while moved-out folders keep their watches, so that `settle` is due again after `moveTime`.
  bool hasMovedOut() const { return !movedOut_.empty(); }

  /// Why the map is not reliable, if it is not. The first error stays until `reset`.
  std::optional<JournalError> error() const { return error_; }
  void fail(JournalError error);

  /// What changed after the event id `since`.
  std::expected<FolderChanges, JournalError> changes(std::uint64_t since);
  /// The same with the new sizes. Lists the folders whose size is not known; fails with `tooManyChanges` when
  /// it has listed `query.folderLimit` of them, and continues in the next call.
  std::expected<MeasuredChanges, JournalError> measuredChanges(const JournalQuery& query);

  const MountPoints& mounts() const { return mounts_; }
  /// The mounts that are recorded, the root's first.
  const std::vector<ListedPlace>& places() const { return territory_.places(); }
  const FolderMap& map() const { return map_; }
  bool hitWatchLimit() const { return hitWatchLimit_; }

 private:
  // A name in a folder at which something may have appeared or disappeared.
  struct Place {
    FolderRef parent;
    std::string name;

    auto operator<=>(const Place&) const = default;
  };
  struct MovedOut {
    FolderRef folder;
    Clock::time_point since;
  };
  struct Identity {
    std::uint64_t inode = 0;
    Mounted mounted;

    bool operator==(const Identity&) const = default;
  };
  struct Opened {
    FileHandle handle;
    // An errno, when there is no handle.
    int error = 0;
  };
  struct Looked {
    // False when the place must be looked at again.
    bool settled = true;
    // A folder whose contents are not known yet.
    Id toCrawl = FolderMap::none;
  };
  struct Frame {
    Id folder = FolderMap::none;
    FileHandle handle;
    std::vector<std::string> names;
  };
  using Visit = std::function<void(const Entry&)>;

  static std::optional<Identity> identityOf(const std::string& path);
  std::expected<int, int> watch(const FileHandle& folder);
  std::expected<int, int> accept(std::expected<int, int> added);
  void unwatch(int watch) { parts_.queue.source()->unwatch(watch); }

  void touch(Id parent, std::string_view name);
  void touchPlaceOf(Id id);
  std::optional<JournalError> checked();
  std::vector<Id> foldersToList(std::uint64_t since, Bytes minNodeSize) const;
  template <class Test>
  bool isIn(Id id, Test test) const;
  void measure(Id id, Bytes minNodeSize, MeasuredFiles& files);
  void list(Id id, const FileHandle& folder, const Visit& visit);
  void noteSettling(Id id, bool wasCertain);

  void markOwn(Id id);
  void markTree(Id id);
  void markReplaced(Id parent, std::string_view name);

  const MountTree* mountsIn(Id folder) const;
  bool reportsChanges(const FileHandle& mounted, const HandleFacts& facts) const;
  Opened openChild(Id parent, const FileHandle& handle, const std::string& name) const;
  FileHandle openVerified(Id id);
  FileHandle openByPath(const std::string& relativePath) const;
  Looked look(Id parent, std::string_view name, const Opened& opened);
  Looked lookAtClosed(Id parent, std::string_view name, int error);
  Looked lookAtNew(Id parent, std::string_view name, const FileHandle& folder, int watch);
  Looked checkAccess(Id id, const FileHandle& folder);
  void closeOff(Id parent, std::string_view name);
  void moveOut(Id id);
  void moveTo(Id id, Id parent, std::string_view name);
  void crawl(Id top, FileHandle handle);
  Frame listed(Id id, FileHandle handle);
  void dropMovedOut(Clock::time_point now);
  void lookAt(const std::vector<Place>& places);
  void flagUnsettled();
  void noticeMountChanges();
  void takeMountChange(const std::string& relativePath);

  Parts parts_;
  FolderMap map_;
  MountPoints mounts_;
  Territory territory_;
  Identity identity_;
  std::size_t watchLimit_ = 0;
  std::vector<Place> places_;
  // When `places_` is this large, it is settled although events are left.
  std::size_t settleAt_ = 0;
  std::vector<MovedOut> movedOut_;
  // Folders that are listed again for every measured answer, and until when.
  std::map<FolderRef, Clock::time_point> settlingUntil_;
  std::vector<std::byte> listingBuffer_;
  bool mountsMayHaveChanged_ = false;
  bool anyStale_ = false;
  // True while crawls list the sizes too.
  bool crawlMeasures_ = false;
  bool hitWatchLimit_ = false;
  bool isScanning_ = false;
  std::optional<JournalError> error_ = JournalError::settingUp;
};

}  // namespace spacemint
