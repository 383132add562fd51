#pragma once

#include "core/host/EventJournal.h"
#include "core/host/linux/FolderObserver.h"
#include "core/host/linux/FolderOpening.h"
#include "core/host/linux/HandleFacts.h"
#include "core/host/linux/journal/EventClock.h"
#include "core/host/linux/journal/EventQueue.h"
#include "core/host/linux/journal/FolderMap.h"
#include "core/host/linux/journal/MountPoints.h"
#include "core/host/linux/journal/RecorderRules.h"

#include <chrono>
#include <functional>
#include <optional>

namespace spacemint {

/// Keeps the map of the watched folders right while the disk changes.
///
/// Events tell of the past: by the time one is handled its folder may have another path, and its name may be
/// another folder's. So an event is only a hint where to look. What is at a place is decided by opening it
/// and watching it once more, because the same folder always gives the same watch. One thread at a time.
class WatchedTree {
 public:
  using Clock = std::chrono::steady_clock;
  using Id = FolderMap::Id;
  using Seen = FolderObserver::Seen;

  struct Parts {
    std::string root;
    EventQueue& queue;
    EventClock& clock;
    RecorderRules rules = {};
    /// 0 for as many as the queue is for.
    std::size_t watchLimit = 0;
    /// Polled during walks; true abandons them.
    std::function<bool()> shouldStop;
  };

  /// A folder that left its place and does not turn up elsewhere in this time is no longer watched.
  static constexpr std::chrono::milliseconds awayTime{200};
  /// An answer that would name more folders is not worth it.
  static constexpr std::size_t answerLimit = 100'000;

  explicit WatchedTree(Parts parts) : parts_(std::move(parts)) { forget(); }

  /// Forgets everything; until `begin` the loss is that it is being set up.
  void forget();
  /// Begins with an open root, unlisted. Fails with the reason that it cannot be watched.
  std::expected<void, JournalAbsence> begin(const FileHandle& root);
  /// Watches all that is below the root, opened by `begin`'s caller.
  void walkFromRoot(FileHandle root);
  /// A scan has opened a folder, watched it (or failed to, with an errno), and is about to list it. What
  /// happened in between, it will list.
  Seen adopt(Seen parent, std::string_view name, std::expected<int, int> watched);
  /// Until the scan is done, watches may be met that it has not told of yet.
  void expectWatches(bool expected) { expectsWatches_ = expected; }
  /// A scan could not open a folder, or not list one to its end.
  void adoptClosed(Seen parent, std::string_view name);
  void adoptUnlisted(Seen folder);
  Seen rootSeen() const { return {map_.root(), map_[map_.root()].generation}; }

  void handle(const FolderEvent& event);
  /// The descriptor of `mounts` became ready, which it tells once.
  void noticeMounts() { mountsMayHaveChanged_ = true; }
  /// Looks at the places that events pointed at, when no event is left.
  void settle(Clock::time_point now);
  /// Whether folders are away, so that `settle` is due again after `awayTime`.
  bool isWaiting() const { return !away_.empty(); }

  /// Why nothing is certain any more.
  std::optional<JournalAbsence> loss() const { return loss_; }
  void lose(JournalAbsence reason);

  /// What changed after `since`.
  std::expected<FolderChanges, JournalAbsence> changes(std::uint64_t since);

  const MountPoints& mounts() const { return mounts_; }
  const FolderMap& map() const { return map_; }
  bool hitWatchLimit() const { return hitWatchLimit_; }

 private:
  using Ref = FolderMap::Ref;

  // Something may have come or gone here.
  struct Place {
    Ref parent;
    std::string name;

    auto operator<=>(const Place&) const = default;
  };
  struct Away {
    Ref folder;
    Clock::time_point since;
  };
  struct Identity {
    std::uint64_t inode = 0;
    Mounted mounted;

    bool operator==(const Identity&) const = default;
  };
  // What opening a name gave.
  struct Opened {
    FileHandle handle;
    int error = 0;
  };
  // What looking at a place came to.
  struct Looked {
    // False when it cannot be told yet.
    bool settled = true;
    // A folder of which nothing below is known yet.
    Id toWalk = FolderMap::none;
  };
  struct Frame {
    Id folder = FolderMap::none;
    FileHandle handle;
    std::vector<std::string> names;
  };

  static std::optional<Identity> identityOf(const std::string& path);
  std::expected<int, int> watch(const FileHandle& folder) { return accept(parts_.queue.watch(folder)); }
  std::expected<int, int> accept(std::expected<int, int> added);

  void touch(Id parent, std::string_view name);
  void touchPlaceOf(Id id);
  void markOwn(Id id);
  void markTree(Id id);
  void markReplaced(Id parent, std::string_view name);
  bool isOpenEnded(const FolderMap::Record& record) const;

  Opened openChild(Id parent, const FileHandle& handle, const std::string& name) const;
  FileHandle openVerified(Id id);
  FileHandle openByPath(const std::string& relativePath) const;
  Looked look(Id parent, std::string_view name, const Opened& opened);
  Looked lookAtClosed(Id parent, std::string_view name, int error);
  Looked lookAtNew(Id parent, std::string_view name, const FileHandle& folder, int watch);
  Looked checkAccess(Id id, const FileHandle& folder);
  void closeOff(Id parent, std::string_view name);
  void putAway(Id id);
  void moveTo(Id id, Id parent, std::string_view name);
  void walk(Id top, FileHandle handle);
  Frame frameOf(Id id, FileHandle handle);
  void forgetAway(Clock::time_point now);
  void lookAt(const std::vector<Place>& places);
  void flagUnanswered();
  void takeMountChange(const std::string& relativePath);

  Parts parts_;
  FolderMap map_;
  MountPoints mounts_;
  Identity identity_;
  std::size_t watchLimit_ = 0;
  std::vector<Place> places_;
  // With so many of them it is time to look, while events go on.
  std::size_t settleAt_ = 0;
  std::vector<Away> away_;
  bool mountsMayHaveChanged_ = false;
  bool anyStale_ = false;
  bool hitWatchLimit_ = false;
  bool expectsWatches_ = false;
  std::optional<JournalAbsence> loss_ = JournalAbsence::settingUp;
};

}  // namespace spacemint
