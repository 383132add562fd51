#pragma once

#include "core/base/Error.h"
#include "core/host/EventJournal.h"

#include <optional>

namespace spacemint {

/// Records the changes below a folder until it is destroyed. Its own process queries the recorder directly;
/// other processes of the same user query it through `hostEventJournal`. All functions may be called from any
/// thread.
class EventRecorder : public EventJournal {
 public:
  struct Options {
    /// The folder to record, spelled as scans spell it: absolute, without "/" at the end.
    std::string root = {};
    /// The folder for the socket and the lock file. Empty means "spacemint" in `UserFolders::runtime`;
    /// without a runtime folder recording fails, because the lock has to be there.
    std::string endpointFolder = {};
    /// The folder for the session counter. Empty means "spacemint" in `UserFolders::state`.
    std::string stateFolder = {};
    /// The largest number of folders to watch; 0 means most of what the kernel allows.
    std::size_t watchLimit = 0;
    /// True starts with a crawl by the recorder itself. False waits for a scan that calls `beginCrawl`.
    bool crawlsAtOnce = true;
  };

  struct Status {
    /// Why queries cannot be answered now; absent while they can.
    std::optional<JournalError> error = {};
    /// Folders known below the root, the root included.
    std::size_t folders = 0;
    /// Folders that are watched. The others are crawled by every scan.
    std::size_t watches = 0;
    /// One mark on the whole file system takes the place of a kernel watch on each folder.
    bool marksFileSystem = false;
    /// Bytes of this process's memory for the map of folders and the watches.
    std::size_t memory = 0;
    /// The command that raises the kernel's limit of watches; empty unless that limit was reached.
    std::string limitAdvice = {};
  };

  /// Starts a recorder with its own threads. Fails with EBUSY when another process of the user records the
  /// same folder, with EMFILE when the kernel allows no more watchers, and when the root cannot be opened.
  /// A crawl keeps its recorder alive.
  static std::expected<std::shared_ptr<EventRecorder>, Error> start(Options options);

  /// Waits until the recorder answers queries. False after `timeout`, or at once if recording failed
  /// permanently. Lost events are not a permanent failure: the recorder then crawls again.
  virtual bool waitUntilRecording(std::chrono::milliseconds timeout) = 0;

  virtual Status status() = 0;

  /// Ends the recording and all waits for it. The destructor does the same.
  virtual void stop() = 0;
};

}  // namespace spacemint
