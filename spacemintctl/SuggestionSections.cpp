#include "core/analysis/Suggestions.h"
#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "core/wording/FindingText.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/Section.h"

namespace spacemint::ctl {

namespace {

Json jsonOf(const std::vector<Suggestion::Location>& locations) {
  Json list = Json::array();
  for (const auto& location : locations) {
    list.push_back({{"path", jsonText(location.path)}, {"size", location.size}});
  }
  return list;
}

Json jsonOf(const Suggestion& suggestion) {
  return {{"id", suggestion.id},         {"title", suggestion.title},
          {"advice", suggestion.advice}, {"symbol", suggestion.symbol},
          {"size", suggestion.size()},   {"locations", jsonOf(suggestion.locations)}};
}

std::string whereabouts(const Suggestion& suggestion, const Scene& scene) {
  const std::string first = shownPath(suggestion.locations.front().path, scene);
  const std::size_t others = suggestion.locations.size() - 1;
  if (others == 0) return first;
  return i18np("{path} and {count} other", "{path} and {count} others", static_cast<std::int64_t>(others),
               {{"path", first}, {"count", numberText(static_cast<std::int64_t>(others))}});
}

}  // namespace

std::expected<Findings, Error> suggestionFindings(const Scene& scene) {
  auto suggestions = Suggestions::find({.in = scene.snapshot,
                                        .home = scene.wording.home,
                                        .minimum = scene.minimum,
                                        .environment = scene.environment,
                                        .now = scene.now});
  // The Trash has its own section.
  std::erase_if(suggestions, [](const Suggestion& each) { return each.id == "trash"; });
  Table table{1};
  Json list = Json::array();
  for (const Suggestion& each : suggestions) {
    list.push_back(jsonOf(each));
    table.add({shownSize(each.size(), scene), each.title, whereabouts(each, scene), each.advice});
  }
  return Findings{.text = table.empty() ? i18n(FindingText::nothingToClean) + '\n' : table.text(),
                  .json = std::move(list)};
}

std::expected<Findings, Error> trashFindings(const Scene& scene) {
  const auto trash = Suggestions::trash(
      {.in = scene.snapshot, .home = scene.wording.home, .environment = scene.environment});
  // Folders below the scan's threshold are not in the tree.
  if (!trash || trash->size == 0) {
    return Findings{.text = i18n("The Trash is empty, or too small to be stored.") + "\n",
                    .json = nullptr,
                    .isWorthReporting = false};
  }
  const std::string& locale = scene.wording.locale;
  return Findings{.text = i18n("{title}: {path}", {{"title", FindingText::trashTitle(*trash, locale)},
                                                   {"path", shownPath(trash->path, scene)}}) +
                          '\n' + FindingText::trashLine(*trash, locale) + '\n',
                  .json = {{"path", jsonText(trash->path)},
                           {"size", trash->size},
                           {"hiddenSize", trash->hiddenSize()},
                           {"hiddenItems", jsonOf(trash->hiddenItems)}}};
}

}  // namespace spacemint::ctl
