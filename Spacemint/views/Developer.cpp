#include "Spacemint/views/Developer.h"

#include "Spacemint/views/ShownText.h"
#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/RelativeTime.h"
#include "core/base/TextList.h"
#include "core/base/Translation.h"
#include "core/wording/FindingText.h"

#include <algorithm>
#include <array>

namespace spacemint {

namespace {

constexpr std::string_view ollamaModels = ".ollama/models";

// The texts about a tool while it has nothing to list.
struct ToolTexts {
  const char* checking;
  const char* notRunning;
  const char* empty;
  std::string (*failed)(const std::string& reason);
};
constexpr ToolTexts dockerTexts{i18nMark("Checking Docker…"), FindingText::startDocker,
                                FindingText::noDockerData, FindingText::dockerFailed};
constexpr ToolTexts ollamaTexts{i18nMark("Checking Ollama…"), FindingText::openOllama,
                                FindingText::noOllamaModels, FindingText::ollamaFailed};

template <class ToolState>
ListStatus statusOf(const ToolState& tool, const ToolTexts& texts) {
  using Kind = typename ToolState::Kind;
  switch (tool.kind) {
    case Kind::ready:
      return {.text = tool.payload.empty() ? i18n(texts.empty) : ""};
    case Kind::failed:
      return {.text = texts.failed(tool.error)};
    case Kind::unknown:
    case Kind::checking:
      return {.text = i18n(texts.checking), .isWaiting = true};
    case Kind::notInstalled:
      return {.isShown = false};
    case Kind::notRunning:
      return {.text = i18n(texts.notRunning)};
  }
  return {};
}

struct DockerKind {
  std::string_view type;
  const char* title;
  const char* symbol;
};
constexpr std::array<DockerKind, 4> dockerKinds{
    {{"Images", i18nMark("Unused images"), "square.stack.3d.up"},
     {"Containers", i18nMark("Stopped containers"), "shippingbox"},
     {"Build Cache", i18nMark("Unused build cache"), "hammer"},
     {"Local Volumes", i18nMark("Local Volumes"), "cylinder"}}};

// Sets the title and the symbol for a kind of Docker's data. A kind that is not in the table keeps Docker's
// name.
void describe(ListItem& item, const DevTools::DockerUsage& usage) {
  const auto* known = std::ranges::find(dockerKinds, usage.type, &DockerKind::type);
  const bool isKnown = known != dockerKinds.end();
  item.title = isKnown ? i18n(known->title) : usage.type;
  item.symbol = isKnown ? known->symbol : "cube";
}

struct RepositoryKind {
  std::string_view kind;
  const char* symbol;
};
constexpr std::array<RepositoryKind, 3> repositoryKinds{
    {{"Model", "brain"}, {"Dataset", "square.stack.3d.up"}, {"Space", "cube"}}};

// Sets the title, the subtitle and the symbol for an item of the Hugging Face cache.
void describe(ListItem& item, const DevTools::HuggingFaceItem& found) {
  const auto* known = std::ranges::find(repositoryKinds, found.kind, &RepositoryKind::kind);
  if (known == repositoryKinds.end()) {
    item.title = i18n("Other cached files");
    item.subtitle = facts({i18n(found.kind.c_str()), isolatedName(found.repo)});
    item.symbol = "cube.transparent";
    return;
  }
  const auto owner = found.owner();
  item.title = found.name();
  item.subtitle = facts({i18n(found.kind.c_str()), isolatedName(owner.value_or(""))});
  item.symbol = known->symbol;
}

}  // namespace

Developer::Developer(const UiHost& host)
    : host_(host),
      caches_(host),
      ollama_(host),
      huggingFace_(host),
      docker_(host),
      dockerPrune_(host),
      worktrees_(host),
      activeWorktrees_(host) {
  AppModel& model = host_.model;
  connect(&model.currentFindings(), &CurrentFindings::updated, this, &Developer::updateFound);
  // The lines contain ages, which grow.
  connect(&model, &AppModel::statusChanged, this, &Developer::updateWorktrees);
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
  if (count == 0) return {};
  if (showsAll) return ShownText::plain(i18n("Hide active worktrees"));
  return ShownText::plain(i18np("Show {count} active worktree", "Show {count} active worktrees", count,
                                {{"count", groupedNumber(count, host_.locale)}}));
}

void Developer::updateFound() {
  const Findings& findings = host_.model.findings();
  const bool isReady = host_.model.currentFindings().isReady();
  const bool hasNoCaches = isReady && findings.devCleanups.empty();
  caches_.assign(cacheItems(),
                 {.text = hasNoCaches ? FindingText::noCaches(Findings::cacheMinimum, host_.locale) : ""});
  huggingFace_.assign(huggingFaceItems(), {.isShown = !findings.huggingFace.empty()});
  updateWorktrees();
}

std::vector<ListItem> Developer::cacheItems() const {
  std::vector<ListItem> items;
  for (const DevTools::FoundCleanup& found : host_.model.findings().devCleanups) {
    items.push_back({.id = std::string{found.id()},
                     .path = found.path,
                     .size = found.size,
                     .isDirectory = true,
                     .title = i18n(found.target->title),
                     .subtitle = i18n(found.target->advice),
                     .symbol = std::string{found.target->symbol},
                     .buttonTitle = i18n("Clean up"),
                     .onButton = [&model = host_.model, found] { model.cleanups().ask(found); }});
  }
  return items;
}

std::vector<ListItem> Developer::huggingFaceItems() const {
  std::vector<ListItem> items;
  for (const DevTools::HuggingFaceItem& found : host_.model.findings().huggingFace) {
    ListItem item{.id = found.path, .path = found.path, .size = found.size, .isDirectory = true};
    describe(item, found);
    if (host_.mayRemove(found.path, false)) {
      item.buttonTitle = i18n("Delete");
      item.onButton = [&model = host_.model, found] {
        model.cleanups().ask(
            DeleteRequest{found.path, found.repo, found.size, i18n("It downloads again when needed.")});
      };
    }
    items.push_back(std::move(item));
  }
  return items;
}

void Developer::updateOllama() {
  const auto& tool = host_.model.dev().ollama();
  std::vector<ListItem> items;
  items.reserve(tool.payload.size());
  for (const DevTools::OllamaModel& model : tool.payload) {
    items.push_back({.id = "ollama:" + model.name,
                     .path = Paths::join(host_.home, ollamaModels),
                     .size = model.size,
                     .isDirectory = true,
                     .title = model.name,
                     .subtitle = RelativeTime::translated(model.modified),
                     .symbol = "brain",
                     .buttonTitle = i18n("Remove"),
                     .onButton = [&app = host_.model, model] { app.cleanups().ask(model); }});
  }
  ollama_.assign(std::move(items), statusOf(tool, ollamaTexts));
}

void Developer::updateDocker() {
  DeveloperTools& tools = host_.model.dev();
  std::vector<ListItem> items;
  for (const DevTools::DockerUsage& usage : tools.docker().payload) {
    ListItem item{.id = usage.type,
                  .size = usage.reclaimable,
                  .subtitle = FindingText::inUse(usage.active, usage.count)};
    describe(item, usage);
    if (usage.isVolumes() && usage.reclaimable > 0) {
      item.id = "docker-volumes";
      item.buttonTitle = i18n("Remove");
      item.onButton = [&model = host_.model] {
        model.cleanups().ask(DockerPruneRequest{true, model.dev().dockerVolumesReclaimable()});
      };
    }
    items.push_back(std::move(item));
  }
  docker_.assign(std::move(items), statusOf(tools.docker(), dockerTexts));
  if (tools.dockerReclaimable() <= 0) return dockerPrune_.assign({});
  std::vector<ListItem> prune;
  prune.push_back({.id = "docker",
                   .title = i18n("Removes stopped containers, unused images and build cache. Keeps volumes."),
                   .buttonTitle = i18n("Clean up"),
                   .onButton = [&model = host_.model] {
                     model.cleanups().ask(DockerPruneRequest{false, model.dev().dockerReclaimable()});
                   }});
  dockerPrune_.assign(std::move(prune));
}

void Developer::updateWorktrees() {
  std::vector<ListItem> stale;
  std::vector<ListItem> active;
  for (const GitWorktree& worktree : host_.model.findings().worktrees) {
    (worktree.isOld(now(), GitWorktrees::staleDays) ? stale : active).push_back(worktreeItem(worktree));
  }
  const bool hasNone = stale.empty() && host_.model.currentFindings().isReady();
  worktrees_.assign(std::move(stale), {.text = hasNone ? i18n(FindingText::noOldWorktrees) : ""});
  activeWorktrees_.assign(std::move(active));
}

ListItem Developer::worktreeItem(const GitWorktree& worktree) const {
  ListItem item{.id = worktree.path,
                .path = worktree.path,
                .size = worktree.size,
                .isDirectory = true,
                .title = worktree.name(),
                .subtitle = FindingText::worktreeLine(worktree, now(), ShownText::wordsLocale),
                .symbol = "arrow.triangle.branch"};
  // Worktrees of several repositories may have one name; then the place tells them apart.
  const auto hasTheName = [&](const GitWorktree& other) { return other.name() == worktree.name(); };
  if (std::ranges::count_if(host_.model.findings().worktrees, hasTheName) > 1) {
    item.subtitle = facts({item.subtitle, isolatedPath(Paths::display(worktree.path, host_.home))});
  }
  // Git removes a worktree at any place; an orphan is deleted by the application.
  if (host_.mayRemove(worktree.path, !worktree.isOrphaned)) {
    item.buttonTitle = i18n("Remove");
    item.onButton = [&model = host_.model, worktree] { model.cleanups().ask(worktree); };
  }
  return item;
}

}  // namespace spacemint
