#pragma once

#include "core/host/FolderListing.h"

#include <chrono>
#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// Why a journal cannot report changes. The caller must then assume that everything changed.
enum class JournalError : std::uint8_t {
  /// No recorder runs for this folder.
  notRecording,
  /// The recorder's first crawl is not complete.
  settingUp,
  /// The event id is from before this recorder started, or from before its first crawl was complete.
  olderThanSession,
  /// The recorder never gave out this event id.
  fromTheFuture,
  /// The kernel's event queue or the recorder's own overflowed.
  eventsLost,
  /// No answer within the timeout, or the query was cancelled.
  timedOut,
  /// Another folder is now at the path of the recorded one.
  rootReplaced,
  unmounted,
  /// More folders changed than an answer may contain.
  tooManyChanges,
  /// The file system can change without events: another computer or a lower file system writes to it.
  unreportedChanges,
  failed,
};

/// The reason as a clause that fits after "because", such as "the recorder lost events".
std::string_view textOf(JournalError error);

/// The folders that changed, as full paths at or below the root of the query.
struct FolderChanges {
  /// Entries of these folders themselves changed. This says nothing about their subfolders.
  std::vector<std::string> directories = {};
  /// Anything in these folders or below them may have changed.
  std::vector<std::string> trees = {};

  bool operator==(const FolderChanges&) const = default;
};

/// The folders that changed, with their new sizes. With the earlier scan they make the new one
/// (`ScanUpdate`).
struct MeasuredChanges {
  enum class Kind : std::uint8_t {
    /// As in the earlier scan, with everything below.
    same,
    /// Something below changed; the folder's own files are those of the earlier scan.
    below,
    /// The entries of the folder may have changed; `files` has its own files.
    listed,
    /// The journal does not know the folder's contents. It must be scanned, and what it takes be added to all
    /// folders above.
    unknown,
  };
  struct Folder {
    /// The position of the parent, which comes before its subfolders. For the first folder, the root: 0.
    std::uint32_t parent = 0;
    Kind kind = Kind::same;
    bool isWorktree = false;
    /// Of everything at and below the folder, without what is below `unknown` folders.
    Bytes size = 0;
    std::int64_t fileCount = 0;
    std::string name = {};

    bool operator==(const Folder&) const = default;
  };
  struct File {
    /// The position of its folder.
    std::uint32_t folder = 0;
    std::string name = {};
    Bytes size = 0;
    /// In seconds since 1970-01-01 00:00:00 UTC.
    std::int64_t modified = 0;

    bool operator==(const File&) const = default;
  };

  /// The root and, below every folder that is `below` or `listed`, all subfolders that a scan stores
  /// (`isStored` with `JournalQuery::minNodeSize`), and those with an `unknown` folder below. Empty if
  /// nothing changed.
  std::vector<Folder> folders = {};
  /// The files of `listed` folders that have at least `JournalQuery::minNodeSize`.
  std::vector<File> files = {};

  bool operator==(const MeasuredChanges&) const = default;
};

/// A query to a journal.
struct JournalQuery {
  /// The recorded folder, spelled exactly as the recorder was started with it.
  std::string root = {};
  /// The event id stored with the earlier scan.
  std::uint64_t since = 0;
  /// Approximately the longest wait for an answer.
  std::chrono::milliseconds timeout{60'000};
  /// For measured changes only: the threshold of the earlier scan, and how many folders the journal may list.
  Bytes minNodeSize = 0;
  std::size_t folderLimit = 20'000;
  /// Called at least ten times a second while the call waits; true ends the wait. May be empty.
  std::function<bool()> shouldCancel = {};
};

/// A folder listing for one full scan, which registers every folder with the recorder before it is listed, so
/// that the scan also sets up the recorder. If the listing is destroyed before `finish`, the recorder records
/// nothing.
class RecordingCrawl : public FolderListing {
 public:
  /// The event id to store with the scan. The next answer then includes the changes made during the scan.
  virtual std::uint64_t eventID() const = 0;
  /// Call when the scan has visited every folder. From then on the recorder answers queries.
  virtual void finish() = 0;
  /// True once the recorder has given up this crawl, as on a file system that changes without events. The
  /// rest of the scan then sets up nothing.
  virtual bool hasFailed() const = 0;
};

/// Reports which folders below a root changed since an earlier time. All functions may be called from any
/// thread.
class EventJournal {
 public:
  EventJournal() = default;
  EventJournal(const EventJournal&) = delete;
  EventJournal& operator=(const EventJournal&) = delete;
  virtual ~EventJournal() = default;

  /// An id for the current time, larger than every id returned before; 0 if `query.root` is not recorded.
  /// Ignores `query.since`. Blocks for at most 5 seconds.
  virtual std::uint64_t currentEventID(const JournalQuery& query) = 0;

  /// The folders that changed after `query.since`. Includes all changes made before this call. Blocks for
  /// about `query.timeout` at most.
  virtual std::expected<FolderChanges, JournalError> changes(const JournalQuery& query) = 0;

  /// The same with the new sizes, for which the journal lists the folders that changed. Fails more often than
  /// `changes`: with `tooManyChanges` beyond `query.folderLimit`, and with `failed` if the journal knows no
  /// sizes.
  virtual std::expected<MeasuredChanges, JournalError> measuredChanges(const JournalQuery& query);

  /// Starts to record `root` and returns the listing that the full scan must use. Null if `root` is already
  /// recorded or this journal cannot record it.
  virtual std::unique_ptr<RecordingCrawl> beginCrawl(const std::string& root);
};

/// A journal that queries the recorders of this user in all processes. It records nothing itself.
std::unique_ptr<EventJournal> hostEventJournal();

}  // namespace spacemint
