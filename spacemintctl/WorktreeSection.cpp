#include "core/analysis/GitWorktrees.h"
#include "core/base/Translation.h"
#include "core/wording/FindingText.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/Section.h"

#include <algorithm>
#include <ranges>

namespace spacemint::ctl {

namespace {

Json jsonOf(const GitWorktree& worktree, Date now) {
  return {{"path", jsonText(worktree.path)},
          {"size", worktree.size},
          {"repository", jsonOptional(worktree.repository)},
          {"repositoryPath", jsonOptional(worktree.repositoryPath)},
          {"branch", jsonOptional(worktree.branch)},
          {"lastUsed", jsonDate(worktree.lastUsed)},
          {"isOrphaned", worktree.isOrphaned},
          {"isOld", worktree.isOld(now, GitWorktrees::staleDays)}};
}

// The repository and the branch, as far as they are known.
std::string origin(const GitWorktree& worktree) {
  std::string text = printable(worktree.repository.value_or(""));
  if (worktree.branch) text += " (" + printable(*worktree.branch) + ")";
  return text;
}

}  // namespace

std::expected<Findings, Error> worktreeFindings(const Scene& scene) {
  auto worktrees = GitWorktrees::find({.in = scene.snapshot, .minimum = scene.minimum});
  Json list = Json::array();
  for (const GitWorktree& each : worktrees) list.push_back(jsonOf(each, scene.now));

  // Old worktrees first.
  std::ranges::stable_partition(
      worktrees, [&](const GitWorktree& each) { return each.isOld(scene.now, GitWorktrees::staleDays); });
  Table table{1};
  for (const GitWorktree& each : worktrees | std::views::take(scene.top)) {
    table.add({shownSize(each.size, scene),
               each.isOld(scene.now, GitWorktrees::staleDays) ? i18n("stale") : i18n("active"),
               FindingText::worktreeLine(each, scene.now, scene.wording.locale), origin(each),
               shownPath(each.path, scene)});
  }
  addRest(table, worktrees.size(), scene.top);
  return Findings{.text = table.empty() ? i18n("No worktrees of {size} or more.",
                                               {{"size", shownSize(scene.minimum, scene)}}) +
                                              "\n"
                                        : table.text(),
                  .json = std::move(list),
                  .isWorthReporting = !table.empty()};
}

}  // namespace spacemint::ctl
