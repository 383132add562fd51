#pragma once

#include "core/base/Error.h"
#include "core/host/EventJournal.h"
#include "core/host/FolderListing.h"

#include <optional>

namespace spacemint {

/// The first walk of a recorder, made by a scan that opens every subfolder. Given up when it is destroyed
/// without `finish`. It must not outlive its recorder.
class RecordingWalk {
 public:
  RecordingWalk() = default;
  RecordingWalk(const RecordingWalk&) = delete;
  RecordingWalk& operator=(const RecordingWalk&) = delete;
  virtual ~RecordingWalk() = default;

  /// Where the scan takes its entries from: every folder is watched before it is listed.
  virtual FolderListing& listing() = 0;
  /// The id that the scan is to carry, so that what changed during it is in the next answer.
  virtual std::uint64_t eventID() const = 0;
  /// The scan has opened all that there was; from here on the recorder answers.
  virtual void finish() = 0;
};

/// Records what changes below one folder for as long as it lives, and answers for it: to its own process
/// directly, to other processes of the user through `hostEventJournal`.
class EventRecorder : public EventJournal {
 public:
  struct Options {
    /// The folder as scans spell it.
    std::string root;
    /// Where other processes of the user find the recorder; empty for `UserFolders::runtime`. Without such a
    /// folder recording fails, for then nothing keeps two recorders apart.
    std::string meetingFolder = {};
    /// Where the count of sessions is kept; empty for the user's state folder.
    std::string stateFolder = {};
    /// At most so many folders are watched; 0 for most of what the system grants.
    std::size_t watchLimit = 0;
    /// False where a scan makes the first walk (`beginWalk`).
    bool walksAtOnce = true;
  };

  struct Status {
    /// Why no question can be answered now, if none can.
    std::optional<JournalAbsence> absence;
    std::size_t folders = 0;
    std::size_t watches = 0;
    /// One mark on the file system does for all folders, so that they are known rather than watched.
    bool marksFileSystem = false;
    /// Bytes of this process that the map of folders takes.
    std::size_t memory = 0;
    /// What would let it watch all folders, where the system's limit does not; empty otherwise.
    std::string limitAdvice;
  };

  /// Begins the recording anew with a walk that the caller makes.
  virtual std::unique_ptr<RecordingWalk> beginWalk() = 0;

  /// Waits until questions are answered; false when that takes longer than `timeout` or the recording failed.
  virtual bool waitUntilRecording(std::chrono::milliseconds timeout) = 0;

  virtual Status status() = 0;

  /// Ends the recording; whoever waits for it returns. Destroying it does so too.
  virtual void stop() = 0;
};

/// Starts a recorder with threads of its own. Fails when another process of the user records the same folder
/// (EBUSY), when the root cannot be opened, and when the system grants no more watchers.
std::expected<std::unique_ptr<EventRecorder>, Error> startRecording(EventRecorder::Options options);

}  // namespace spacemint
