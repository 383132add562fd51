#include "Spacemint/views/Developer.h"

#include "Spacemint/views/DeveloperText.h"
#include "core/wording/FindingText.h"

namespace spacemint {

namespace {

constexpr std::string_view ollamaModels = ".ollama/models";

// What is said of a tool in the place of what it keeps; nothing of one that is not there.
struct ToolTexts {
  std::string_view checking;
  std::string_view notRunning;
  std::string_view empty;
  std::string (*failed)(const std::string& reason);
};
constexpr ToolTexts dockerTexts{DeveloperText::checkingDocker, FindingText::startDocker,
                                FindingText::noDockerData, FindingText::dockerFailed};
constexpr ToolTexts ollamaTexts{DeveloperText::checkingOllama, FindingText::openOllama,
                                FindingText::noOllamaModels, FindingText::ollamaFailed};

template <class ToolState>
Section::State stateOf(const ToolState& tool, const ToolTexts& texts) {
  using Kind = typename ToolState::Kind;
  switch (tool.kind) {
    case Kind::ready:
      return {.text = std::string{tool.payload.empty() ? texts.empty : ""}};
    case Kind::failed:
      return {.text = texts.failed(tool.error)};
    case Kind::unknown:
    case Kind::checking:
      return {.text = std::string{texts.checking}, .isWaiting = true};
    case Kind::notInstalled:
      return {.isShown = false};
    case Kind::notRunning:
      return {.text = std::string{texts.notRunning}};
  }
  return {};
}

}  // namespace

Developer::Developer(const ItemActions& actions)
    : host_(actions.host()),
      caches_(actions),
      ollama_(actions),
      huggingFace_(actions),
      docker_(actions),
      dockerPrune_(actions),
      worktrees_(actions),
      activeWorktrees_(actions) {
  AppModel& model = host_.model;
  connect(&model.currentFindings(), &CurrentFindings::updated, this, &Developer::updateFound);
  connect(&model, &AppModel::statusChanged, this, &Developer::updateWorktrees);  // ages grow
  connect(&model.dev(), &DeveloperTools::dockerChanged, this, &Developer::updateDocker);
  connect(&model.dev(), &DeveloperTools::ollamaChanged, this, &Developer::updateOllama);
  updateFound();
  updateDocker();
  updateOllama();
}

void Developer::appeared() {
  host_.model.dev().refreshIfNeeded();
}

QString Developer::activeToggle(int count, bool showsAll) const {
  return QString::fromStdString(DeveloperText::activeToggle(count, showsAll));
}

void Developer::updateFound() {
  const Findings& findings = host_.model.findings();
  const bool isReady = host_.model.currentFindings().isReady();
  caches_.assign({.rows = cacheRows(),
                  .text = isReady && findings.devCleanups.empty()
                              ? FindingText::noCaches(Findings::cacheMinimum, host_.locale)
                              : ""});
  huggingFace_.assign({.rows = huggingFaceRows(), .isShown = !findings.huggingFace.empty()});
  updateWorktrees();
}

std::vector<ItemRow> Developer::cacheRows() const {
  std::vector<ItemRow> rows;
  for (const DevTools::FoundCleanup& found : host_.model.findings().devCleanups) {
    rows.push_back({.id = std::string{found.id()},
                    .path = found.path,
                    .size = found.size,
                    .isDirectory = true,
                    .title = std::string{found.target->title},
                    .subtitle = std::string{found.target->advice},
                    .symbol = std::string{found.target->symbol},
                    .buttonTitle = "Clean up",
                    .onButton = [&model = host_.model, found] { model.confirm(found); }});
  }
  return rows;
}

std::vector<ItemRow> Developer::huggingFaceRows() const {
  std::vector<ItemRow> rows;
  for (const DevTools::HuggingFaceItem& item : host_.model.findings().huggingFace) {
    auto text = DeveloperText::cacheItem(item);
    rows.push_back({.id = item.path,
                    .path = item.path,
                    .size = item.size,
                    .isDirectory = true,
                    .title = std::move(text.title),
                    .subtitle = std::move(text.subtitle),
                    .symbol = std::string{text.symbol},
                    .buttonTitle = "Delete",
                    .onButton = [&model = host_.model, item] {
                      model.confirm(DeleteRequest{.path = item.path,
                                                  .name = item.repo,
                                                  .size = item.size,
                                                  .note = std::string{DeveloperText::downloadsAgain}});
                    }});
  }
  return rows;
}

void Developer::updateOllama() {
  const auto& tool = host_.model.dev().ollama();
  auto state = stateOf(tool, ollamaTexts);
  for (const DevTools::OllamaModel& model : tool.payload) {
    state.rows.push_back({.id = "ollama:" + model.name,
                          .path = Paths::join(host_.home, ollamaModels),
                          .size = model.size,
                          .isDirectory = true,
                          .title = model.name,
                          .subtitle = model.modified,
                          .symbol = "brain",
                          .buttonTitle = "Remove",
                          .onButton = [&app = host_.model, model] { app.confirm(model); }});
  }
  ollama_.assign(std::move(state));
}

void Developer::updateDocker() {
  DeveloperTools& tools = host_.model.dev();
  auto state = stateOf(tools.docker(), dockerTexts);
  for (const DevTools::DockerUsage& usage : tools.docker().payload) {
    const auto kind = DeveloperText::dockerKind(usage.type);
    ItemRow row{.id = usage.type,
                .size = usage.reclaimable,
                .title = std::string{kind.title},
                .subtitle = FindingText::inUse(usage.active, usage.count),
                .symbol = std::string{kind.symbol}};
    if (usage.isVolumes() && usage.reclaimable > 0) {
      row.id = "docker-volumes";
      row.buttonTitle = "Remove";
      row.onButton = [&model = host_.model] {
        model.confirm(DockerPruneRequest{true, model.dev().dockerVolumesReclaimable()});
      };
    }
    state.rows.push_back(std::move(row));
  }
  docker_.assign(std::move(state));
  if (tools.dockerReclaimable() <= 0) return dockerPrune_.assign({});
  dockerPrune_.assign({{.id = "docker",
                        .title = std::string{DeveloperText::pruneLine},
                        .buttonTitle = "Clean up",
                        .onButton = [&model = host_.model] {
                          model.confirm(DockerPruneRequest{false, model.dev().dockerReclaimable()});
                        }}});
}

void Developer::updateWorktrees() {
  std::vector<ItemRow> old;
  std::vector<ItemRow> active;
  for (const GitWorktree& worktree : host_.model.findings().worktrees) {
    (worktree.isOld(now(), GitWorktrees::staleDays) ? old : active).push_back(worktreeRow(worktree));
  }
  const bool hasNone = old.empty() && host_.model.currentFindings().isReady();
  worktrees_.assign(
      {.rows = std::move(old), .text = std::string{hasNone ? FindingText::noOldWorktrees : ""}});
  activeWorktrees_.assign(std::move(active));
}

ItemRow Developer::worktreeRow(const GitWorktree& worktree) const {
  return {.id = worktree.path,
          .path = worktree.path,
          .size = worktree.size,
          .isDirectory = true,
          .title = worktree.name(),
          .subtitle = FindingText::worktreeLine(worktree, now(), host_.locale),
          .symbol = "arrow.triangle.branch",
          .buttonTitle = "Remove",
          .onButton = [&model = host_.model, worktree] { model.confirm(worktree); }};
}

}  // namespace spacemint
