#include "core/host/EventJournal.h"

namespace spacemint {

std::string_view textOf(JournalError error) {
  switch (error) {
    case JournalError::notRecording:
      return "nothing records the changes of this folder";
    case JournalError::settingUp:
      return "the recorder is still setting up";
    case JournalError::olderThanSession:
      return "the last scan is older than the recording";
    case JournalError::fromTheFuture:
      return "the last scan is not known to this recorder";
    case JournalError::eventsLost:
      return "the recorder lost events";
    case JournalError::timedOut:
      return "the recorder did not answer in time";
    case JournalError::rootReplaced:
      return "the folder was replaced";
    case JournalError::unmounted:
      return "its volume was unmounted";
    case JournalError::tooManyChanges:
      return "too much has changed";
    case JournalError::unreportedChanges:
      return "the file system can change without this computer noticing";
    case JournalError::failed:
      return "the recorder failed";
  }
  return "";
}

std::expected<MeasuredChanges, JournalError> EventJournal::measuredChanges(const JournalQuery&) {
  return std::unexpected(JournalError::failed);
}

std::unique_ptr<RecordingCrawl> EventJournal::beginCrawl(const std::string&) {
  return nullptr;
}

}  // namespace spacemint
