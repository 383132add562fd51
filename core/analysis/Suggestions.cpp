#include "core/analysis/Suggestions.h"

#include "core/analysis/Search.h"
#include "core/base/Translation.h"
#include "core/places/SuggestionPlaces.h"
#include "core/tree/TreeWalk.h"

#include <algorithm>
#include <array>
#include <functional>

namespace spacemint {

namespace {

using Locations = std::vector<Suggestion::Location>;

Bytes sum(const Locations& locations) {
  Bytes total = 0;
  for (const auto& location : locations) total = saturatingAdd(total, location.size);
  return total;
}

// A suggestion from a row of one of the tables and the locations that were found.
template <class Row>
Suggestion suggestion(const Row& row, Locations locations) {
  return {.id = std::string{row.id},
          .title = i18n(row.title),
          .advice = i18n(row.advice),
          .symbol = std::string{row.symbol},
          .locations = std::move(locations)};
}

std::vector<Suggestion> wellKnownPlaces(const PlaceFinder& finder) {
  std::vector<Suggestion> found;
  for (const SuggestionPlace& row : suggestionPlaces) {
    if (std::ranges::find(found, row.id, &Suggestion::id) != found.end()) continue;
    Locations locations;
    for (const auto& [path, node] : finder.find(row.place)) locations.push_back({path, node->size});
    if (!locations.empty()) found.push_back(suggestion(row, std::move(locations)));
  }
  return found;
}

// Does not look inside a project folder for other project folders: the outer folder's size includes them.
std::vector<Suggestion> projectFoldersIn(const Node& root) {
  std::array<Locations, projectFolders.size()> locations;
  walkTree(root, [&](const std::string& path, const Node& node) {
    if (!node.isDirectory) return false;
    if (&node == &root) return true;
    const auto* row = std::ranges::find(projectFolders, node.name, &ProjectFolder::name);
    if (row == projectFolders.end()) return true;
    locations.at(static_cast<std::size_t>(row - projectFolders.begin())).push_back({path, node.size});
    return false;
  });
  std::vector<Suggestion> found;
  for (std::size_t i = 0; i < projectFolders.size(); ++i) {
    if (locations.at(i).empty()) continue;
    std::ranges::stable_sort(locations.at(i), std::greater{}, &Suggestion::Location::size);
    found.push_back(suggestion(projectFolders.at(i), std::move(locations.at(i))));
  }
  return found;
}

std::optional<Suggestion> largeAndOldFiles(const Snapshot& in, Date now) {
  Suggestion suggestion{.id = std::string{Suggestions::largeAndOld},
                        .title = i18n("Large and old"),
                        .advice = i18n("Files over 100 MB that nobody changed for a year"),
                        .symbol = "externaldrive.badge.timemachine"};
  constexpr std::size_t limit = 1'000;
  const FileKinds noKinds;
  for (const SearchResult& found :
       search(in, *parseSearch(Suggestions::largeAndOldSearch), noKinds, now, limit)) {
    suggestion.locations.push_back({found.path, found.node->size});
  }
  return suggestion.locations.empty() ? std::nullopt : std::optional{std::move(suggestion)};
}

bool isHidden(const Node& item) {
  return item.name.starts_with('.') && item.name != ".DS_Store";
}

}  // namespace

Bytes Suggestion::size() const {
  return sum(locations);
}

Bytes Suggestions::TrashInfo::hiddenSize() const {
  return sum(hiddenItems);
}

std::vector<Suggestion> Suggestions::find(const FindArguments& arguments) {
  auto found = wellKnownPlaces({arguments.in, arguments.home, arguments.environment});
  std::ranges::move(projectFoldersIn(arguments.in.root), std::back_inserter(found));
  auto old = arguments.now ? largeAndOldFiles(arguments.in, *arguments.now) : std::nullopt;
  if (old) found.push_back(std::move(*old));
  std::erase_if(found, [&](const Suggestion& each) { return each.size() < arguments.minimum; });
  std::ranges::stable_sort(found, std::greater{}, &Suggestion::size);
  return found;
}

std::optional<Suggestions::TrashInfo> Suggestions::trash(const TrashArguments& arguments) {
  const PlaceFinder finder{arguments.in, arguments.home, arguments.environment};
  const auto plainTrash = finder.findOne({".Trash"});
  const auto trash = plainTrash ? plainTrash : finder.findOne({"$data/Trash"});
  if (!trash) return std::nullopt;
  TrashInfo info{.path = trash->path, .size = trash->node->size, .hiddenItems = {}};
  // A Trash in the data folder keeps its items in "files", next to "info" with the notes about the items.
  const Node* items = plainTrash ? trash->node : trash->node->child("files");
  if (items == nullptr) return info;
  const std::string itemsPath = plainTrash ? trash->path : Paths::join(trash->path, items->name);
  for (const Node& item : items->children) {
    if (isHidden(item)) info.hiddenItems.push_back({Paths::join(itemsPath, item.name), item.size});
  }
  return info;
}

}  // namespace spacemint
