#pragma once

#include "core/host/EventJournal.h"

#include <string>

namespace spacemint {

/// Asks the recorder of a root, in whatever process of the user it runs, through its socket.
class SocketJournal final : public EventJournal {
 public:
  /// `meetingFolder` as for `MeetingPlace::forRoot`.
  explicit SocketJournal(std::string meetingFolder = {}) : meetingFolder_(std::move(meetingFolder)) {}

  std::uint64_t currentEventID(const std::string& root) override;
  std::expected<FolderChanges, JournalAbsence> changes(const Question& question) override;

 private:
  std::string meetingFolder_;
};

}  // namespace spacemint
