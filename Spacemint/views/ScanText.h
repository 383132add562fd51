#pragma once

#include "core/tree/Snapshot.h"

#include <optional>
#include <string>
#include <string_view>

namespace spacemint {

/// What is said of the scan that runs, and of the last one.
namespace ScanText {

/// How far it is; without a fraction nobody knows.
std::string title(std::optional<double> fraction);
/// What was counted so far, and how long it may take.
std::string detail(std::int64_t files, std::optional<Seconds> remaining, const std::string& locale);

struct Scanned {
  const Snapshot& snapshot;
  Date now;
  std::string_view home;
  std::string locale;
};

/// "Scanned 2 hours ago · home folder"
std::string scanned(const Scanned& scan);
/// "600,000 files, scanned in 4s"
std::string scannedHelp(const Snapshot& snapshot, const std::string& locale);

}  // namespace ScanText

}  // namespace spacemint
