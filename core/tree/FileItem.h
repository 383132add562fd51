#pragma once

#include "core/base/Bytes.h"
#include "core/base/Date.h"
#include "core/tree/Paths.h"

#include <optional>
#include <string>

namespace spacemint {

/// A file of a scan. Its full path identifies it.
struct FileItem {
  std::string path;
  Bytes size = 0;
  std::optional<Date> modified;

  const std::string& id() const { return path; }
  std::string name() const { return Paths::lastComponent(path); }

  bool operator==(const FileItem&) const = default;
};

}  // namespace spacemint
