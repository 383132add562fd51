#include "spacemintctl/browse/FolderLook.h"

#include "core/host/FileStamp.h"
#include "core/tree/Paths.h"

namespace spacemint::ctl {

FolderLook lookInto(const std::string& folder, const std::unordered_set<std::string>& names) {
  FolderLook look;
  const auto opened = hostFolderListing()->open(folder);
  if (!opened) return look;
  ListingBuffer buffer;
  for (Batch batch = (*opened)->nextBatch(buffer); !batch.entries.empty();
       batch = (*opened)->nextBatch(buffer)) {
    for (const Entry& entry : batch.entries) {
      std::string name{entry.name};
      // A mount may not answer.
      if (entry.error != 0 || entry.device == Entry::otherVolume || !names.contains(name)) continue;
      ItemLook item{.type = entry.type, .links = entry.links, .length = entry.length};
      if (entry.type == EntryType::folder) item.modified = fileStamp(Paths::join(folder, name)).modified();
      look.emplace(std::move(name), item);
    }
  }
  return look;
}

}  // namespace spacemint::ctl
