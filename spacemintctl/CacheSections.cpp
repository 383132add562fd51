#include "core/analysis/DevTools.h"
#include "core/analysis/HuggingFace.h"
#include "core/base/Translation.h"
#include "core/wording/FindingText.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/Section.h"

namespace spacemint::ctl {

namespace {

Json jsonOf(const DevTools::FoundCleanup& found) {
  const CleanupTarget& target = *found.target;
  return {{"id", target.id},
          {"title", target.title},
          {"advice", target.advice},
          {"symbol", target.symbol},
          {"path", jsonText(found.path)},
          {"size", found.size},
          {"commandLine", jsonOptional(target.commandLine())}};
}

Json jsonOf(const DevTools::HuggingFaceItem& item) {
  return {
      {"repo", jsonText(item.repo)}, {"kind", item.kind}, {"path", jsonText(item.path)}, {"size", item.size}};
}

}  // namespace

std::expected<Findings, Error> cacheFindings(const Scene& scene) {
  Table table{1};
  Json list = Json::array();
  for (const auto& each : DevTools::cleanups({.in = scene.snapshot,
                          .home = scene.wording.home,
                          .minimum = scene.minimum,
                          .environment = scene.environment})) {
    list.push_back(jsonOf(each));
    table.add({shownSize(each.size, scene), i18n(each.target->title), shownPath(each.path, scene),
               each.target->commandLine().value_or(i18n("delete its contents"))});
  }
  return Findings{.text = table.empty() ? FindingText::noCaches(scene.minimum, scene.wording.locale) + '\n'
                                        : table.text(),
                  .json = std::move(list)};
}

std::expected<Findings, Error> huggingFaceFindings(const Scene& scene) {
  const auto items = DevTools::huggingFace(
      {.in = scene.snapshot, .home = scene.wording.home, .environment = scene.environment});
  Table table{1};
  Json list = Json::array();
  for (const auto& each : items) {
    list.push_back(jsonOf(each));
    if (list.size() <= scene.top)
      table.add({shownSize(each.size, scene), i18n(each.kind.c_str()), printable(each.repo)});
  }
  addRest(table, items.size(), scene.top);
  return Findings{.text = table.empty() ? i18n("No cached models.") + "\n" : table.text(),
                  .json = std::move(list),
                  .isWorthReporting = !table.empty()};
}

}  // namespace spacemint::ctl
