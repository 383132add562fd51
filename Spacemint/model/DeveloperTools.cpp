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
  const bool isFresh = lastRefresh_ && clock_.steadyNow() - *lastRefresh_ < keptFor;
  if (!isFresh) refresh();
}

void DeveloperTools::refresh() {
  lastRefresh_ = clock_.steadyNow();
  refreshDocker();
  refreshOllama();
}

void DeveloperTools::refreshDocker(std::function<void()> then) {
  ask(DevTools::dockerQuery, &DeveloperTools::docker_, &DeveloperTools::dockerChanged,
      DevTools::parseDockerDF, std::move(then));
}

void DeveloperTools::refreshOllama(std::function<void()> then) {
  ask(DevTools::ollamaQuery, &DeveloperTools::ollama_, &DeveloperTools::ollamaChanged,
      DevTools::parseOllamaList, std::move(then));
}

template <class State, class Parse>
void DeveloperTools::ask(const DevTools::ToolQuery& query, State DeveloperTools::*held,
                         void (DeveloperTools::*changed)(), Parse parse, std::function<void()> then) {
  const auto show = [this, held, changed](const State& state) {
    if (std::exchange(this->*held, state) != state) Q_EMIT(this->*changed)();
  };
  // An earlier answer stays while the tool is asked again.
  if ((this->*held).kind != State::Kind::ready) show({.kind = State::Kind::checking});
  tasks_.run(
      Tasks::Priority::utility, this,
      [runs = runs_, query, parse] { return DevTools::toolState(runs.ask(query), parse); },
      [show, then = std::move(then)](State state) {
        show(std::move(state));
        then();
      });
}

}  // namespace spacemint
