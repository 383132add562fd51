#include "Spacemint/views/DeveloperText.h"

#include <algorithm>
#include <array>

namespace spacemint {

namespace {

constexpr std::array<DeveloperText::DockerKind, 4> dockerKinds{
    {{"Images", "Unused images", "square.stack.3d.up"},
     {"Containers", "Stopped containers", "shippingbox"},
     {"Build Cache", "Unused build cache", "hammer"},
     {"Local Volumes", "Local Volumes", "cylinder"}}};

struct RepositoryKind {
  std::string_view kind;
  std::string_view symbol;
};
constexpr std::array<RepositoryKind, 3> repositoryKinds{
    {{"Model", "brain"}, {"Dataset", "square.stack.3d.up"}, {"Space", "cube"}}};

}  // namespace

DeveloperText::DockerKind DeveloperText::dockerKind(std::string_view type) {
  const auto* known = std::ranges::find(dockerKinds, type, &DockerKind::type);
  return known != dockerKinds.end() ? *known : DockerKind{.type = type, .title = type, .symbol = "cube"};
}

DeveloperText::CacheItem DeveloperText::cacheItem(const DevTools::HuggingFaceItem& item) {
  const auto* known = std::ranges::find(repositoryKinds, item.kind, &RepositoryKind::kind);
  if (known == repositoryKinds.end()) {
    return {.title = "Other cached files",
            .subtitle = item.kind + " · " + item.repo,
            .symbol = "cube.transparent"};
  }
  const auto owner = item.owner();
  return {.title = item.name(),
          .subtitle = owner ? item.kind + " · " + *owner : item.kind,
          .symbol = known->symbol};
}

std::string DeveloperText::activeToggle(int count, bool showsAll) {
  if (count == 0) return "";
  if (showsAll) return "Hide active worktrees";
  return "Show " + std::to_string(count) + " active worktree" + (count == 1 ? "" : "s");
}

}  // namespace spacemint
