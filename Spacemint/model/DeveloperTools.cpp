#include "Spacemint/model/DeveloperTools.h"

#include <functional>

namespace spacemint {

namespace {

Bytes reclaimable(const DeveloperTools::Docker& docker, bool ofVolumes) {
  if (docker.kind != DeveloperTools::Docker::Kind::ready) return 0;
  Bytes sum = 0;
  for (const auto& usage : docker.payload) {
    if (usage.isVolumes() == ofVolumes) sum = checkedAdd(sum, usage.reclaimable);
  }
  return sum;
}

}  // namespace

Bytes DeveloperTools::dockerReclaimable() const {
  return reclaimable(docker_, false);
}

Bytes DeveloperTools::dockerVolumesReclaimable() const {
  return reclaimable(docker_, true);
}

void DeveloperTools::refreshIfNeeded() {
  const Date now = clock_.now();
  // A clock that was set back must not stop it for good.
  const bool isFresh = lastRefresh_ && *lastRefresh_ <= now && now - *lastRefresh_ < keptFor;
  if (!isFresh) refresh();
}

void DeveloperTools::refresh() {
  lastRefresh_ = clock_.now();
  refreshDocker();
  refreshOllama();
}

QFuture<bool> DeveloperTools::refreshDocker() {
  const auto show = [this](Docker state) {
    if (std::exchange(docker_, state) != state) Q_EMIT dockerChanged();
  };
  // An earlier answer stays while the tool is asked again.
  if (docker_.kind != Docker::Kind::ready) show({.kind = Docker::Kind::checking});
  return tasks_
      .run(Tasks::Priority::utility,
           [runs = runs_] {
             return DevTools::toolState(runs.ask(DevTools::dockerQuery), DevTools::parseDockerDF);
           })
      .then(this, [show](const Docker& state) {
        show(state);
        return true;
      });
}

QFuture<bool> DeveloperTools::refreshOllama() {
  const auto show = [this](Ollama state) {
    if (std::exchange(ollama_, state) != state) Q_EMIT ollamaChanged();
  };
  if (ollama_.kind != Ollama::Kind::ready) show({.kind = Ollama::Kind::checking});
  return tasks_
      .run(Tasks::Priority::utility,
           [runs = runs_] {
             return DevTools::toolState(runs.ask(DevTools::ollamaQuery), DevTools::parseOllamaList);
           })
      .then(this, [show](const Ollama& state) {
        show(state);
        return true;
      });
}

}  // namespace spacemint
