#pragma once

#include "core/scan/DiskScanner.h"

namespace spacemint {

/// The largest items in the root of a running scan.
struct FoundSoFar {
  struct Item {
    std::string name;
    Bytes size = 0;
    bool isDirectory = true;
    /// The scan is in this folder, so its size grows.
    bool isGrowing = false;

    bool operator==(const Item&) const = default;
  };

  static constexpr std::size_t mostItems = 12;

  /// The bytes of everything found.
  Bytes bytes = 0;
  /// The largest first. Without empty folders and those that the scan has not reached.
  std::vector<Item> items;

  /// `root` is that of the scan.
  static FoundSoFar in(const DiskScanner::Unfinished& scan, std::string_view root);

  bool operator==(const FoundSoFar&) const = default;
};

}  // namespace spacemint
