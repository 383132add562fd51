#include "core/places/Place.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace spacemint {

namespace {

// A mark at the start of a place's path, and the folder that the mark stands for: the value of `variable`, or
// `underHome` in the home folder if the variable is not set.
struct BaseFolder {
  std::string_view mark;
  std::string_view variable;
  std::string_view underHome;
};
constexpr BaseFolder baseFolders[] = {{"$cache/", "XDG_CACHE_HOME", ".cache"},
                                      {"$data/", "XDG_DATA_HOME", ".local/share"}};

std::vector<std::string_view> splitAt(char separator, std::string_view text) {
  std::vector<std::string_view> pieces;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(separator), text.size());
    if (end > 0) pieces.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return pieces;
}

// The folder in a variable's value, normalized as in a tree; absent for a relative path, for the home folder
// and for its ancestors.
std::optional<std::string> ownFolder(std::string_view value, std::string_view home) {
  if (!value.starts_with('/')) return std::nullopt;
  std::string normal = std::filesystem::path{value}.lexically_normal().string();
  normal.resize(Paths::withoutTrailingSlash(normal).size());
  if (Paths::join(home, "").starts_with(Paths::join(normal, ""))) return std::nullopt;
  return normal;
}

}  // namespace

PlaceFinder::PlaceFinder(const Snapshot& snapshot, std::string_view home, Environment environment)
    : snapshot_(snapshot),
      home_(home),
      environment_(std::move(environment)) {}

std::vector<PlaceFinder::Found> PlaceFinder::find(const Place& place) const {
  std::vector<std::string> paths = movedTo(place.movedBy);
  const bool takesFirst = paths.empty() && place.path.find('|') != std::string_view::npos;
  if (paths.empty()) {
    for (const std::string_view path : splitAt(takesFirst ? '|' : ':', place.path)) {
      paths.push_back(absolute(path));
    }
  }
  std::vector<Found> found;
  for (const std::string& path : paths) {
    const Node* node = snapshot_.nodeAt(path);
    if (node == nullptr) continue;
    found.push_back({snapshot_.resolve(path), node});
    if (takesFirst) break;
  }
  return found;
}

std::optional<PlaceFinder::Found> PlaceFinder::findOne(const Place& place) const {
  auto found = find(place);
  if (found.empty()) return std::nullopt;
  return std::move(found.front());
}

std::vector<std::string> PlaceFinder::movedTo(std::string_view movedBy) const {
  std::vector<std::string> paths;
  if (!environment_) return paths;
  for (const std::string_view way : splitAt('|', movedBy)) {
    const std::size_t nameLength = std::min(way.find('/'), way.size());
    const std::string_view inside = way.substr(std::min(nameLength + 1, way.size()));
    const std::string value = environment_(std::string{way.substr(0, nameLength)}).value_or("");
    for (const std::string_view piece : splitAt(':', value)) {
      // Check the whole path, not `piece` alone: the variable may name any folder, also the home folder, if
      // the place is a folder inside it.
      const std::string path = inside.empty() ? std::string{piece} : Paths::join(piece, inside);
      if (auto folder = ownFolder(path, home_)) paths.push_back(std::move(*folder));
    }
    if (!paths.empty()) break;
  }
  return paths;
}

std::string PlaceFinder::absolute(std::string_view path) const {
  if (path.starts_with('/')) return std::string{path};
  for (const BaseFolder& base : baseFolders) {
    if (!path.starts_with(base.mark)) continue;
    const std::string_view inside = path.substr(base.mark.size());
    return Paths::join(folderVariable(base.variable).value_or(Paths::join(home_, base.underHome)), inside);
  }
  return Paths::join(home_, path);
}

std::optional<std::string> PlaceFinder::folderVariable(std::string_view name) const {
  if (!environment_) return std::nullopt;
  const auto value = environment_(std::string{name});
  if (!value || !value->starts_with('/')) return std::nullopt;
  return std::string{Paths::withoutTrailingSlash(*value)};
}

}  // namespace spacemint
