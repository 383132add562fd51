#include "core/scan/ScanTiming.h"

#include "core/host/FolderListing.h"

#include <algorithm>

namespace spacemint {

namespace {

constexpr double tellingFraction = 0.03;
constexpr Seconds tellingTime{5};

}  // namespace

bool ScanTiming::isStale(const Staleness& question) {
  if (question.snapshot == nullptr || question.snapshot->rootPath() != question.root) return true;
  if (question.snapshot->measuredPart) return true;
  const Date scanned = question.snapshot->date;
  return scanned > question.now || Seconds{timeBetween(scanned, question.now)} > question.olderThan;
}

ScanTiming::Expected ScanTiming::expected(const Snapshot* last, std::string_view root,
                                          const std::optional<VolumeStatus>& volume,
                                          std::span<const VolumeReading> volumes) {
  if (last != nullptr && last->rootPath() == root && !last->measuredPart)
    return {.bytes = last->root.size, .files = last->fileCount};
  if (root == wholeDisk && !volumes.empty()) {
    Bytes used = 0;
    for (const auto& [each, space] : volumes) {
      if (space && !each.isRemovable) used = saturatingAdd(used, space->used);
    }
    return {.bytes = used};
  }
  return {.bytes = volume ? volume->used() : 0};
}

std::optional<double> ScanTiming::fraction(std::int64_t counted, std::int64_t expected) {
  if (expected < 1) return std::nullopt;
  return std::min(static_cast<double>(counted) / static_cast<double>(expected), highestFraction);
}

std::optional<Seconds> ScanTiming::remaining(const DiskScanner::Progress& counted, const Expected& expected,
                                             Seconds elapsed) {
  const auto byFiles = fraction(counted.files, expected.files);
  const auto part = byFiles ? byFiles : fraction(counted.bytes, expected.bytes);
  if (!part || *part <= tellingFraction || elapsed <= tellingTime) return std::nullopt;
  return (1 - *part) * elapsed / *part;
}

}  // namespace spacemint
