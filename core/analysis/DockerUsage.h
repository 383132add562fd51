#pragma once

#include "core/base/Bytes.h"

#include <string>
#include <string_view>
#include <vector>

namespace spacemint::DevTools {

/// The disk usage of one type of Docker's data. Sizes are in bytes.
struct DockerUsage {
  /// Docker's name of the type: "Images", "Containers", "Local Volumes", "Build Cache".
  std::string type;
  std::int64_t count = 0;
  /// How many of `count` are in use.
  std::int64_t active = 0;
  Bytes size = 0;
  /// How much `docker system prune` can free.
  Bytes reclaimable = 0;

  const std::string& id() const { return type; }
  bool isVolumes() const { return type == "Local Volumes"; }

  bool operator==(const DockerUsage&) const = default;
};

/// Parses the output of `docker system df --format {{json .}}`: one JSON object per line, results in the same
/// order. Lines that cannot be parsed are skipped; numbers that cannot be parsed and negative sizes become 0.
std::vector<DockerUsage> parseDockerDF(std::string_view text);

/// True if Docker's error output says that its daemon does not answer.
bool isConnectionError(std::string_view text);

}  // namespace spacemint::DevTools
