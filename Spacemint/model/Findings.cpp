#include "Spacemint/model/Findings.h"

namespace spacemint {

namespace {

std::optional<Suggestions::TrashInfo> largeTrash(const Findings::Question& question) {
  auto trash = Suggestions::trash(
      {.in = question.snapshot, .home = question.home, .environment = question.environment});
  return trash && trash->size >= Findings::trashMinimum ? std::move(trash) : std::nullopt;
}

// The Trash is not said twice.
std::vector<Suggestion> suggestionsBeside(const std::optional<Suggestions::TrashInfo>& trash,
                                          const Findings::Question& question) {
  auto suggestions = Suggestions::find({.in = question.snapshot,
                                        .home = question.home,
                                        .minimum = Findings::suggestionMinimum,
                                        .environment = question.environment});
  if (trash) std::erase_if(suggestions, [](const Suggestion& each) { return each.id == "trash"; });
  return suggestions;
}

void compare(const Findings::Question& question, Findings& findings) {
  if (!question.baselineEntry) return;
  const auto baseline = question.store.load(*question.baselineEntry);
  findings.baselineUnavailable = !baseline;
  if (!baseline) return;
  findings.growth = Changes::growth({.from = *baseline,
                                     .to = question.snapshot,
                                     .minimum = Findings::growthMinimum,
                                     .limit = Findings::growthLimit});
  if (baseline->rootPath() == question.snapshot.rootPath()) findings.baselineFree = baseline->volumeFree;
}

}  // namespace

Findings Findings::in(const Question& question) {
  const Snapshot& snapshot = question.snapshot;
  Findings findings{.trash = largeTrash(question),
                    .deviceBackups = DeviceBackups::find({.in = snapshot, .home = question.home}),
                    .worktrees = GitWorktrees::find({.in = snapshot, .minimum = worktreeMinimum}),
                    .devCleanups = DevTools::cleanups({.in = snapshot,
                                                       .home = question.home,
                                                       .minimum = cacheMinimum,
                                                       .environment = question.environment}),
                    .huggingFace = DevTools::huggingFace(
                        {.in = snapshot, .home = question.home, .environment = question.environment}),
                    .largestFiles = snapshot.largestFiles(fileLimit)};
  findings.suggestions = suggestionsBeside(findings.trash, question);
  compare(question, findings);
  return findings;
}

}  // namespace spacemint
