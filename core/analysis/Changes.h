#pragma once

#include "core/tree/Snapshot.h"

#include <string>
#include <vector>

namespace spacemint {

/// A folder or file that explains where space went.
struct Growth {
  std::string path;
  /// New size minus old size; a place without an old size counts from 0.
  Bytes delta = 0;
  Bytes size = 0;
  bool isDirectory = false;
  /// The earlier scan has no entry for the path.
  bool isNew = false;

  const std::string& id() const { return path; }
  bool operator==(const Growth&) const = default;
};

/// What changed between two scans of the same folder.
namespace Changes {

struct GrowthArguments {
  const Snapshot& from;
  const Snapshot& to;
  Bytes minimum = 0;
  std::size_t limit = 0;
};

/// The places that grew by at least `minimum`, largest growth first, at most `limit`. A folder whose growth
/// is explained by one of its children (60 % of it or more) gives way to that child, so no place is listed
/// together with one inside it. Nothing for scans of different folders, and nothing when the whole grew by
/// less than `minimum`.
std::vector<Growth> growth(const GrowthArguments& arguments);

}  // namespace Changes

}  // namespace spacemint
