#pragma once

#include <chrono>
#include <cstdint>
#include <expected>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// Why a journal cannot tell what changed. Each of them means that everything may have.
enum class JournalAbsence : std::uint8_t {
  notRecording,
  settingUp,
  olderThanSession,
  fromTheFuture,
  eventsLost,
  timedOut,
  rootReplaced,
  unmounted,
  tooManyChanges,
  failed,
};

/// The reason in words, to follow "because": "the recorder lost events", for instance.
std::string_view textOf(JournalAbsence reason);

/// Folders by their full paths, each under the root that was asked for.
struct FolderChanges {
  /// Their own entries changed; nothing is said of their subfolders.
  std::vector<std::string> directories;
  /// Anything below them may have changed.
  std::vector<std::string> trees;
};

/// What happened below a folder, as far back as somebody has been recording it. Any thread.
class EventJournal {
 public:
  struct Question {
    /// The id that `currentEventID` gave before the earlier scan began.
    std::uint64_t since = 0;
    /// The folder that is recorded, spelled as the recorder was told it.
    std::string root;
    /// How long the answer may take, roughly.
    std::chrono::milliseconds timeout{0};
  };

  EventJournal() = default;
  EventJournal(const EventJournal&) = delete;
  EventJournal& operator=(const EventJournal&) = delete;
  virtual ~EventJournal() = default;

  /// The id of this moment, larger than every id given before; 0 while nothing is recorded for `root`.
  virtual std::uint64_t currentEventID(const std::string& root) = 0;

  /// Every folder that changed after the id was given, complete up to the call. Blocks for about
  /// `Question::timeout` at the most.
  virtual std::expected<FolderChanges, JournalAbsence> changes(const Question& question) = 0;
};

/// The journal of this user's recorders, whichever process they run in. Absent answers where none runs.
std::unique_ptr<EventJournal> hostEventJournal();

}  // namespace spacemint
