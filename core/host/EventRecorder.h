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
    /// The folder to record, spelled as in scans: absolute, without a trailing "/".
    std::string root = {};
    /// The folder for the socket and the lock file. Empty means "spacemint" in `UserFolders::runtime`;
    /// without a runtime folder recording fails, because the lock file must be in it.
    std::string endpointFolder = {};
    /// The folder for the session counter. Empty means "spacemint" in `UserFolders::state`.
    std::string stateFolder = {};
    /// The largest number of folders to watch; 0 means most of the number that the kernel allows.
    std::size_t watchLimit = 0;
    /// True: the recorder itself crawls the folder at start. False: it waits for a scan that calls
    /// `beginCrawl`.
    bool crawlsAtOnce = true;
  };

  struct Status {
    /// Why the recorder cannot answer queries now; absent if it can.
    std::optional<JournalError> error = {};
    /// The number of known folders, including the root.
    std::size_t folders = 0;
    /// The number of watched folders. Every scan walks the others.
    std::size_t watches = 0;
    /// True if one mark on the whole file system replaces the kernel's watches on single folders.
    bool marksFileSystem = false;
    /// Bytes of this process's memory for the map of folders and the watches.
    std::size_t memory = 0;
    /// A command that raises the kernel's limit of watches; empty if the limit was not reached.
    std::string limitAdvice = {};
  };

  /// Starts a recorder with its own threads. Fails with EBUSY if another process of the user records the same
  /// folder, with EMFILE if the kernel allows no more inotify instances, and with the errno of
  /// opening the root. A crawl keeps its recorder alive.
  static std::expected<std::shared_ptr<EventRecorder>, Error> start(Options options);

  /// Waits until the recorder answers queries. False after `timeout`, or at once if recording failed
  /// permanently. Lost events are not a permanent failure: the recorder then crawls again.
  virtual bool waitUntilRecording(std::chrono::milliseconds timeout) = 0;

  virtual Status status() = 0;

  /// Ends the recording and all waits for it. The destructor does the same.
  virtual void stop() = 0;
};

}  // namespace spacemint
