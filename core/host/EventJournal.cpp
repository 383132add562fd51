#include "core/host/EventJournal.h"

#include "core/base/Translation.h"
namespace spacemint {

std::string_view textOf(JournalError error) {
  switch (error) {
    case JournalError::notRecording:
      return i18nMark("nothing records the changes of this folder");
    case JournalError::settingUp:
      return i18nMark("the recorder is still setting up");
    case JournalError::olderThanSession:
      return i18nMark("the last scan is older than the recording");
    case JournalError::fromTheFuture:
      return i18nMark("the last scan is not known to this recorder");
    case JournalError::eventsLost:
      return i18nMark("the recorder lost events");
    case JournalError::timedOut:
      return i18nMark("the recorder did not answer in time");
    case JournalError::rootReplaced:
      return i18nMark("the folder was replaced");
    case JournalError::unmounted:
      return i18nMark("its volume was unmounted");
    case JournalError::tooManyChanges:
      return i18nMark("too much has changed");
    case JournalError::unreportedChanges:
      return i18nMark("the file system can change without this computer noticing");
    case JournalError::failed:
      return i18nMark("the recorder failed");
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
