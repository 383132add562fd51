#include "core/history/SnapshotWriter.h"

namespace spacemint {

std::expected<bool, Error> SnapshotWriter::save(const Snapshot& snapshot, std::int64_t revision) {
  const std::scoped_lock turn{mutex_};
  const auto earlier = written_.find(snapshot.date);
  if (earlier != written_.end() && earlier->second >= revision) return false;
  if (auto saved = store_.save(snapshot); !saved) return std::unexpected(std::move(saved.error()));
  written_.insert_or_assign(snapshot.date, revision);
  return true;
}

}  // namespace spacemint
