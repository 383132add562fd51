#include "core/host/linux/journal/MountPoints.h"

#include "core/host/linux/MountTable.h"

#include <fcntl.h>
#include <poll.h>

#include <algorithm>
#include <iterator>

namespace spacemint {

namespace {

std::set<std::pair<std::string, std::uint64_t>> mountsBelow(std::string root) {
  if (!root.ends_with('/')) root += '/';
  std::set<std::pair<std::string, std::uint64_t>> mounts;
  for (const Mount& mount : currentMounts()) {
    if (mount.mountPoint.starts_with(root) && mount.mountPoint.size() > root.size()) {
      mounts.emplace(mount.mountPoint.substr(root.size()), mount.id);
    }
  }
  return mounts;
}

}  // namespace

MountPoints::MountPoints(std::string root)
    : root_(std::move(root)),
      table_(open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)),
      mounts_(mountsBelow(root_)) {}

bool MountPoints::haveChanged() const {
  pollfd table{table_.get(), POLLPRI, 0};
  return table_ && poll(&table, 1, 0) > 0;
}

std::vector<std::string> MountPoints::refresh() {
  auto now = mountsBelow(root_);
  std::vector<std::pair<std::string, std::uint64_t>> changed;
  std::ranges::set_symmetric_difference(mounts_, now, std::back_inserter(changed));
  mounts_ = std::move(now);
  std::vector<std::string> paths;
  for (auto& [path, id] : changed) paths.push_back(std::move(path));
  return paths;
}

}  // namespace spacemint
