#pragma once

#include "core/base/Bytes.h"

#include <string>
#include <string_view>
#include <vector>

namespace spacemint::DevTools {

/// The space that one kind of Docker's data takes.
struct DockerUsage {
  /// As Docker names it: images, containers, "Local Volumes", build cache.
  std::string type;
  std::int64_t count = 0;
  /// How many are in use.
  std::int64_t active = 0;
  Bytes size = 0;
  /// What pruning can free.
  Bytes reclaimable = 0;

  const std::string& id() const { return type; }
  bool isVolumes() const { return type == "Local Volumes"; }

  bool operator==(const DockerUsage&) const = default;
};

/// The output of `docker system df --format {{json .}}`, a JSON object a line, in its order. A line that
/// cannot be read is skipped; a figure that cannot be read, or a negative size, becomes 0.
std::vector<DockerUsage> parseDockerDF(std::string_view text);

/// True when Docker's error text says that its service does not answer.
bool isConnectionError(std::string_view text);

}  // namespace spacemint::DevTools
