#include "core/host/EventJournal.h"

namespace spacemint {

std::string_view textOf(JournalAbsence reason) {
  switch (reason) {
    case JournalAbsence::notRecording:
      return "nothing records the changes of this folder";
    case JournalAbsence::settingUp:
      return "the recorder is still setting up";
    case JournalAbsence::olderThanSession:
      return "the last scan is older than the recording";
    case JournalAbsence::fromTheFuture:
      return "the recorder knows nothing of the last scan";
    case JournalAbsence::eventsLost:
      return "the recorder lost events";
    case JournalAbsence::timedOut:
      return "the recorder did not answer in time";
    case JournalAbsence::rootReplaced:
      return "another folder has come into its place";
    case JournalAbsence::unmounted:
      return "its volume was unmounted";
    case JournalAbsence::tooManyChanges:
      return "too much has changed";
    case JournalAbsence::failed:
      return "the recorder failed";
  }
  return "";
}

}  // namespace spacemint
