#pragma once

#include "core/host/EventJournal.h"
#include "core/host/linux/journal/FolderMap.h"

#include <optional>
#include <unordered_map>
#include <vector>

namespace spacemint {

/// The files that are large enough for the answer, by folder. `File::folder` is not set.
using MeasuredFiles = std::unordered_map<FolderMap::Id, std::vector<MeasuredChanges::File>>;

/// What changed in the map after `query.since`. All folders of the map that are not in an unknown one are
/// measured; `files` are those of the folders that were listed for this query. Absent if a size is beyond 63
/// bits.
std::optional<MeasuredChanges> measuredAnswer(const FolderMap& map, const JournalQuery& query,
                                              MeasuredFiles files);

}  // namespace spacemint
