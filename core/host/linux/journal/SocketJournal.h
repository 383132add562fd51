#pragma once

#include "core/host/EventJournal.h"

#include <string>

namespace spacemint {

/// Asks the recorder of a root through its socket, in whichever process of the user the recorder runs. Any
/// thread.
class SocketJournal final : public EventJournal {
 public:
  /// `endpointFolder` as for `JournalEndpoint::forRoot`.
  explicit SocketJournal(std::string endpointFolder = {}) : endpointFolder_(std::move(endpointFolder)) {}

  std::uint64_t currentEventID(const JournalQuery& query) override;
  std::expected<FolderChanges, JournalError> changes(const JournalQuery& query) override;
  std::expected<MeasuredChanges, JournalError> measuredChanges(const JournalQuery& query) override;

 private:
  std::string endpointFolder_;
};

}  // namespace spacemint
