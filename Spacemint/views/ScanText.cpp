#include "Spacemint/views/ScanText.h"

#include "core/base/ByteFormat.h"
#include "core/base/RelativeTime.h"

#include <cmath>

namespace spacemint::ScanText {

namespace {

std::string remainingText(Seconds remaining) {
  if (remaining < std::chrono::minutes{1}) return "under a minute left";
  const auto minutes = std::llround(remaining.count() / 60);
  return "about " + std::to_string(minutes) + " min left";
}

// A folder that was scanned by hand is neither of the two that the application scans.
std::string scope(const Snapshot& snapshot, std::string_view home) {
  const std::string& root = snapshot.rootPath();
  if (root == home) return "home folder";
  if (root == Paths::dataVolume || snapshot.components(home)) return "entire disk";
  return Paths::display(root, home);
}

}  // namespace

std::string title(std::optional<double> fraction) {
  if (!fraction) return "Scanning…";
  return "Scanning · " + std::to_string(static_cast<int>(*fraction * 100)) + "%";
}

std::string detail(std::int64_t files, std::optional<Seconds> remaining, const std::string& locale) {
  const std::string done = counted(files, "file", locale);
  return remaining ? done + " · " + remainingText(*remaining) : done;
}

std::string scanned(const Scanned& scan) {
  return "Scanned " + RelativeTime::string(scan.snapshot.date, scan.now, scan.locale) + " · " +
         scope(scan.snapshot, scan.home);
}

std::string scannedHelp(const Snapshot& snapshot, const std::string& locale) {
  return counted(snapshot.fileCount, "file", locale) + ", scanned in " +
         std::to_string(static_cast<std::int64_t>(snapshot.duration.count())) + "s";
}

}  // namespace spacemint::ScanText
