#pragma once

#include "core/places/Place.h"
#include "core/tree/Snapshot.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint::DevTools {

/// A repository, or another folder, in the cache of the Hugging Face tools.
struct HuggingFaceItem {
  /// OWNER/NAME, or a label for a folder that is no repository.
  std::string repo;
  /// "Model", "Dataset", "Space" or "Cache folder"; i18n translates it.
  std::string kind;
  /// Full path in the scan tree.
  std::string path;
  Bytes size = 0;

  const std::string& id() const { return path; }
  /// The last part of `repo`.
  std::string name() const;
  /// The part of `repo` before its last "/"; absent without a "/".
  std::optional<std::string> owner() const;

  bool operator==(const HuggingFaceItem&) const = default;
};

struct HuggingFaceRepository {
  std::string repo;
  std::string kind;

  bool operator==(const HuggingFaceRepository&) const = default;
};

/// Parses the name of a folder in the hub: "models--owner--name" is the model owner/name. Absent for any
/// other name.
std::optional<HuggingFaceRepository> parseHuggingFaceFolder(std::string_view name);

struct HuggingFaceArguments {
  const Snapshot& in;
  std::string_view home;
  Environment environment = {};
};

/// The folders of the cache in a scan, largest first. Pure; any thread.
std::vector<HuggingFaceItem> huggingFace(const HuggingFaceArguments& arguments);

}  // namespace spacemint::DevTools
