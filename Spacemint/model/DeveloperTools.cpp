#include "Spacemint/model/DeveloperTools.h"

#include <utility>

namespace spacemint {

namespace {

Bytes reclaimable(const DeveloperTools::Docker& docker, bool ofVolumes) {
  if (docker.kind != DeveloperTools::Docker::Kind::ready) return 0;
  Bytes sum = 0;
  for (const auto& usage : docker.payload) {
    if (usage.isVolumes() == ofVolumes) sum = saturatingAdd(sum, usage.reclaimable);
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
  return ask(DevTools::dockerQuery, &DeveloperTools::docker_, &DeveloperTools::dockerChanged,
             DevTools::parseDockerDF);
}

QFuture<bool> DeveloperTools::refreshOllama() {
  return ask(DevTools::ollamaQuery, &DeveloperTools::ollama_, &DeveloperTools::ollamaChanged,
             DevTools::parseOllamaList);
}

template <class State, class Parse>
QFuture<bool> DeveloperTools::ask(const DevTools::ToolQuery& query, State DeveloperTools::*held,
                                  void (DeveloperTools::*changed)(), Parse parse) {
  const auto show = [this, held, changed](State state) {
    if (std::exchange(this->*held, state) != state) Q_EMIT(this->*changed)();
  };
  // An earlier answer stays while the tool is asked again.
  if ((this->*held).kind != State::Kind::ready) show({.kind = State::Kind::checking});
  return tasks_
      .run(Tasks::Priority::utility,
           [runs = runs_, query, parse] { return DevTools::toolState(runs.ask(query), parse); })
      .then(whileAlive(this, [show](const State& state) {
        show(state);
        return true;
      }));
}

}  // namespace spacemint
