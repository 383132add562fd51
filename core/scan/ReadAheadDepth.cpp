#include "core/scan/ReadAheadDepth.h"

#include <algorithm>

namespace spacemint {

namespace {

// The folders of one measurement, for each helper.
constexpr unsigned foldersPerHelper = 12;
// A folder is as much work for the disk as its table of names and so many names, whose facts lie together.
constexpr double namesPerRead = 16;
constexpr double readsOfFolder = 2;
// A step up is worth it if the listing is faster by so much.
constexpr double worthwhile = 1.15;
// The share of folders that are cached although the disk is the limit.
constexpr double cachedShare = 0.75;
// How many measurements pass before a step that was not worth it is tried again.
constexpr unsigned patience = 24;

}  // namespace

ReadAheadDepth::ReadAheadDepth(Limits limits)
    : limits_{.processors = std::clamp(limits.processors, 1U, highest),
              .most = std::clamp(limits.most, 1U, highest)} {}

void ReadAheadDepth::note(const Listed& folder) {
  ++window_.folders;
  if (folder.hasWaited) ++window_.waited;
  window_.work += readsOfFolder + static_cast<double>(folder.names) / namesPerRead;
  window_.elapsed += folder.elapsed;
  if (window_.folders < foldersPerHelper * depth_) return;
  const double seconds = std::max(window_.elapsed.count(), 1e-9);
  depth_ = next(window_.work * depth_ / seconds);
  window_ = {};
}

bool ReadAheadDepth::isCached() const {
  return window_.waited < window_.folders * (1 - cachedShare);
}

unsigned ReadAheadDepth::next(double rate) {
  const bool isOnTrial = rateBefore_ > 0;
  const double needed = rateBefore_ * worthwhile;
  rateBefore_ = 0;
  if (isCached()) {
    rest_ = 0;
    return limits_.processors;
  }
  if (isOnTrial && rate < needed) {
    rest_ = patience;
    return depthBefore_;
  }
  if (rest_ > 0) {
    --rest_;
    return depth_;
  }
  if (depth_ == limits_.most) return depth_;
  depthBefore_ = depth_;
  rateBefore_ = rate;
  return std::min(2 * depth_, limits_.most);
}

}  // namespace spacemint
