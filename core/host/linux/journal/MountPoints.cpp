#include "core/host/linux/journal/MountPoints.h"

#include "core/host/linux/MountTable.h"

#include <fcntl.h>
#include <poll.h>

#include <algorithm>
#include <iterator>

namespace spacemint {

namespace {

std::set<std::string, std::less<>> pathsBelow(std::string root) {
  if (!root.ends_with('/')) root += '/';
  std::set<std::string, std::less<>> paths;
  for (const Mount& mount : currentMounts()) {
    if (mount.mountPoint.starts_with(root) && mount.mountPoint.size() > root.size()) {
      paths.insert(mount.mountPoint.substr(root.size()));
    }
  }
  return paths;
}

}  // namespace

MountPoints::MountPoints(std::string root)
    : root_(std::move(root)),
      table_(open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)),
      paths_(pathsBelow(root_)) {}

bool MountPoints::haveChanged() const {
  pollfd table{table_.get(), POLLPRI, 0};
  return table_ && poll(&table, 1, 0) > 0;
}

std::vector<std::string> MountPoints::refresh() {
  auto now = pathsBelow(root_);
  std::vector<std::string> changed;
  std::ranges::set_symmetric_difference(paths_, now, std::back_inserter(changed));
  paths_ = std::move(now);
  return changed;
}

}  // namespace spacemint
