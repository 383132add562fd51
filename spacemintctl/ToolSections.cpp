#include "Spacemint/tools/ToolRuns.h"
#include "core/analysis/OllamaModels.h"
#include "core/base/Translation.h"
#include "core/wording/FindingText.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/Section.h"

#include <ranges>

namespace spacemint::ctl {

namespace {

using DockerState = DevTools::ToolState<std::vector<DevTools::DockerUsage>>;
using OllamaState = DevTools::ToolState<std::vector<DevTools::OllamaModel>>;

// The name of the enumerator. After a query, a state is never "unknown" or "checking".
template <class State>
const char* name(const State& state) {
  constexpr const char* names[] = {"ready", "failed", "unknown", "checking", "notInstalled", "notRunning"};
  return names[std::to_underlying(state.kind)];
}

template <class State>
Json jsonOf(const State& state, const char* listName, Json list) {
  Json object{{"state", name(state)}};
  if (state.kind == State::Kind::failed) object["error"] = jsonText(state.error);
  object[listName] = std::move(list);
  return object;
}

Json jsonOf(const DevTools::DockerUsage& usage) {
  return {{"type", jsonText(usage.type)},
          {"count", usage.count},
          {"active", usage.active},
          {"size", usage.size},
          {"reclaimable", usage.reclaimable}};
}

Json jsonOf(const DevTools::OllamaModel& model) {
  return {{"name", jsonText(model.name)}, {"size", model.size}, {"modified", jsonText(model.modified)}};
}

template <class Items>
Json jsonList(const Items& items) {
  Json list = Json::array();
  for (const auto& item : items) list.push_back(jsonOf(item));
  return list;
}

std::string dockerText(const DockerState& state, const Scene& scene) {
  using enum DockerState::Kind;
  if (state.kind == notInstalled) return i18n("Docker isn't installed.") + "\n";
  if (state.kind == notRunning) return i18n(FindingText::startDocker) + '\n';
  if (state.kind == failed) return FindingText::dockerFailed(printable(state.error)) + '\n';
  Table table{2};
  for (const auto& usage : state.payload) {
    table.add({shownSize(usage.reclaimable, scene),
               i18n("of {size}", {{"size", shownSize(usage.size, scene)}}), printable(usage.type),
               FindingText::inUse(usage.active, usage.count)});
  }
  return table.empty() ? i18n(FindingText::noDockerData) + '\n' : i18n("Can be freed") + "\n" + table.text();
}

std::string ollamaText(const OllamaState& state, const Scene& scene) {
  using enum OllamaState::Kind;
  if (state.kind == notInstalled) return i18n("Ollama isn't installed.") + "\n";
  if (state.kind == notRunning) return i18n(FindingText::openOllama) + '\n';
  if (state.kind == failed) return FindingText::ollamaFailed(printable(state.error)) + '\n';
  Table table{1};
  for (const auto& model : state.payload | std::views::take(scene.top)) {
    table.add({shownSize(model.size, scene), printable(model.name), printable(model.modified)});
  }
  addRest(table, state.payload.size(), scene.top);
  return table.empty() ? i18n(FindingText::noOllamaModels) + '\n' : table.text();
}

}  // namespace

std::expected<Findings, Error> dockerFindings(const Scene& scene) {
  const auto state =
      DevTools::toolState(ToolRuns{Shell{}}.ask(DevTools::dockerQuery), DevTools::parseDockerDF);
  return Findings{.text = dockerText(state, scene),
                  .json = jsonOf(state, "usage", jsonList(state.payload)),
                  .isWorthReporting = state.kind != DockerState::Kind::notInstalled};
}

std::expected<Findings, Error> ollamaFindings(const Scene& scene) {
  const auto state =
      DevTools::toolState(ToolRuns{Shell{}}.ask(DevTools::ollamaQuery), DevTools::parseOllamaList);
  return Findings{.text = ollamaText(state, scene),
                  .json = jsonOf(state, "models", jsonList(state.payload)),
                  .isWorthReporting = state.kind != OllamaState::Kind::notInstalled};
}

}  // namespace spacemint::ctl
