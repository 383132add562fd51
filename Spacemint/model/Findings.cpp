#include "Spacemint/model/Findings.h"

#include "core/host/FileStamp.h"
#include "core/tree/Paths.h"
#include "core/volume/SharedFiles.h"

#include <utility>

namespace spacemint {

namespace {

std::optional<Suggestions::TrashInfo> largeTrash(const Findings::Question& question) {
  auto trash = Suggestions::trash(
      {.in = question.snapshot, .home = question.home, .environment = question.environment});
  return trash && trash->size >= Findings::trashMinimum ? std::move(trash) : std::nullopt;
}

// A large Trash has a card of its own, so it is not a suggestion as well.
std::vector<Suggestion> suggestionsBeside(const std::optional<Suggestions::TrashInfo>& trash,
                                          const Findings::Question& question) {
  auto suggestions = Suggestions::find({.in = question.snapshot,
                                        .home = question.home,
                                        .minimum = Findings::suggestionMinimum,
                                        .environment = question.environment,
                                        .now = question.snapshot.date});
  if (trash) std::erase_if(suggestions, [](const Suggestion& each) { return each.id == "trash"; });
  return suggestions;
}

void compare(const Findings::Question& question, Findings& findings) {
  if (question.baselines.empty()) return;
  findings.baselineEntry = question.baselines.front();
  auto baseline = question.store.load(*findings.baselineEntry);
  const auto isComparable = [&] {
    return baseline && baseline->coverage.excludes == question.snapshot.coverage.excludes;
  };
  findings.baselineUnavailable = !baseline;
  for (std::size_t i = 1; i < question.baselines.size() && baseline && !isComparable(); ++i) {
    auto other = question.store.load(question.baselines[i]);
    if (!other || other->coverage.excludes != question.snapshot.coverage.excludes) continue;
    findings.baselineEntry = question.baselines[i];
    baseline = std::move(other);
  }
  findings.baselineLeftOutOthers = baseline && !isComparable();
  if (!isComparable()) return;
  const Changes::GrowthArguments arguments{.from = *baseline,
                                           .to = question.snapshot,
                                           .minimum = Findings::growthMinimum,
                                           .limit = Findings::growthLimit};
  findings.growth = Changes::growth(arguments);
  findings.shrinkage = Changes::shrinkage(arguments, mayExist);
  findings.comparedTime = timeBetween(baseline->date, question.snapshot.date);
  findings.spaceChange = Changes::spaceChange(*baseline, question.snapshot, question.home);
  if (findings.spaceChange)
    findings.changes = std::make_shared<const ChangeTree>(changeTree(*baseline, question.snapshot));
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
                    .largestFiles = snapshot.largestFiles(fileLimit),
                    .kinds = kindTotals(snapshot.root, FileKinds::ofThisSystem())};
  for (const FileItem& file : findings.largestFiles) {
    if (const auto freed = SharedFiles::freesAtMost(Paths::logical(file.path)))
      findings.freesAtMost.emplace(file.path, *freed);
  }
  findings.suggestions = suggestionsBeside(findings.trash, question);
  compare(question, findings);
  return findings;
}

CurrentFindings::CurrentFindings(ScanHistory& history, Tasks& tasks, const AppContext& context)
    : history_(history),
      tasks_(tasks),
      context_(context) {
  connect(&history_, &ScanHistory::changed, this, &CurrentFindings::recompute);
}

void CurrentFindings::recompute() {
  const SharedSnapshot snapshot = history_.snapshot();
  if (!snapshot) return assign({});
  const auto baselineEntry = history_.baselineEntry();
  const auto analyse = [snapshot, baselines = history_.possibleBaselines(), store = history_.store(),
                        home = context_.home, environment = context_.environment] {
    return Findings::in({.snapshot = *snapshot,
                         .baselines = baselines,
                         .store = store,
                         .home = home,
                         .environment = environment});
  };
  const auto take = [this, revision = history_.revision(), baselineEntry](Findings findings) {
    // Another computation runs for the newer scan or baseline.
    if (history_.revision() != revision || history_.baselineEntry() != baselineEntry) return;
    history_.settleBaseline(findings.baselineEntry);
    assign(std::move(findings));
  };
  tasks_.run(Tasks::Priority::utility, this, analyse, take);
}

void CurrentFindings::assign(Findings findings) {
  const Findings before = std::exchange(findings_, std::move(findings));
  const Findings& now = findings_;
  if (before.growth != now.growth || before.shrinkage != now.shrinkage) Q_EMIT growthChanged();
  if (before.suggestions != now.suggestions) Q_EMIT suggestionsChanged();
  if (before.trash != now.trash) Q_EMIT trashChanged();
  if (before.deviceBackups != now.deviceBackups) Q_EMIT deviceBackupsChanged();
  if (before.worktrees != now.worktrees) Q_EMIT worktreesChanged();
  if (before.devCleanups != now.devCleanups) Q_EMIT devCleanupsChanged();
  if (before.huggingFace != now.huggingFace) Q_EMIT huggingFaceChanged();
  if (before.largestFiles != now.largestFiles || before.freesAtMost != now.freesAtMost)
    Q_EMIT largestFilesChanged();
  if (before.spaceChange != now.spaceChange || before.baselineUnavailable != now.baselineUnavailable ||
      before.baselineLeftOutOthers != now.baselineLeftOutOthers) {
    Q_EMIT baselineChanged();
  }
  isReady_ = history_.snapshot() != nullptr;
  Q_EMIT updated();
}

}  // namespace spacemint
