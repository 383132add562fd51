#include "core/analysis/HuggingFace.h"

#include "core/base/Translation.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace spacemint::DevTools {

namespace {

struct RepositoryKind {
  std::string_view prefix;
  const char* name;
};
constexpr RepositoryKind kinds[] = {
    {"models", i18nMark("Model")}, {"datasets", i18nMark("Dataset")}, {"spaces", i18nMark("Space")}};
constexpr const char* plainFolder = i18nMark("Cache folder");

constexpr Place cache{"$cache/huggingface", "HF_HOME"};
constexpr Place hubPlace{"$cache/huggingface/hub", "HF_HUB_CACHE|HUGGINGFACE_HUB_CACHE|HF_HOME/hub"};
constexpr std::string_view hub = "hub";

HuggingFaceItem cacheFolder(std::string repo, std::string path, Bytes size) {
  return {.repo = std::move(repo), .kind = plainFolder, .path = std::move(path), .size = size};
}

void addHub(const Node& folder, const std::string& path, std::vector<HuggingFaceItem>& items) {
  for (const Node& child : folder.children) {
    if (!child.isDirectory) continue;
    std::string childPath = Paths::join(path, child.name);
    if (auto found = parseHuggingFaceFolder(child.name)) {
      items.push_back({std::move(found->repo), std::move(found->kind), std::move(childPath), child.size});
    } else if (!child.name.starts_with('.')) {
      items.push_back(cacheFolder(Paths::join(hub, child.name), std::move(childPath), child.size));
    }
  }
}

}  // namespace

std::string HuggingFaceItem::name() const {
  return repo.substr(repo.rfind('/') + 1);  // npos + 1 is 0
}

std::optional<std::string> HuggingFaceItem::owner() const {
  const std::size_t slash = repo.rfind('/');
  return slash == std::string::npos ? std::nullopt : std::optional{repo.substr(0, slash)};
}

std::optional<HuggingFaceRepository> parseHuggingFaceFolder(std::string_view name) {
  constexpr std::string_view separator = "--";
  const std::size_t first = name.find(separator);
  if (first == std::string_view::npos) return std::nullopt;
  const auto* kind = std::ranges::find(kinds, name.substr(0, first), &RepositoryKind::prefix);
  if (kind == std::end(kinds)) return std::nullopt;
  std::string repo{name.substr(first + separator.size())};
  for (std::size_t at = 0; (at = repo.find(separator, at)) != std::string::npos; ++at) {
    repo.erase(at, separator.size() - 1);
    repo[at] = '/';
  }
  return HuggingFaceRepository{.repo = std::move(repo), .kind = kind->name};
}

std::vector<HuggingFaceItem> huggingFace(const HuggingFaceArguments& arguments) {
  const PlaceFinder finder{arguments.in, arguments.home, arguments.environment};
  std::vector<HuggingFaceItem> items;
  if (const auto found = finder.findOne(cache)) {
    for (const Node& child : found->node->children) {
      if (!child.isDirectory || child.name == hub) continue;
      items.push_back(cacheFolder(child.name, Paths::join(found->path, child.name), child.size));
    }
  }
  if (const auto found = finder.findOne(hubPlace)) addHub(*found->node, found->path, items);
  std::ranges::stable_sort(items, std::greater{}, &HuggingFaceItem::size);
  return items;
}

}  // namespace spacemint::DevTools
