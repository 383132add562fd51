#include "Spacemint/views/ShownFolder.h"

namespace spacemint {

ShownFolder ShownFolder::in(const Snapshot& snapshot, const std::optional<std::string>& wanted) {
  ShownFolder shown{.path = snapshot.rootPath(), .node = &snapshot.root, .parent = std::nullopt};
  const auto names = wanted ? snapshot.components(*wanted) : std::nullopt;
  if (!names) return shown;
  for (const std::string& name : *names) {
    const Node* child = shown.node->child(name);
    if (child == nullptr || !child->isDirectory) break;
    shown.parent = shown.path;
    shown.path = Paths::join(shown.path, child->name);
    shown.node = child;
  }
  return shown;
}

}  // namespace spacemint
