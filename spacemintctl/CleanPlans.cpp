#include "spacemintctl/CleanPlans.h"

#include "Spacemint/tools/ToolRuns.h"
#include "core/analysis/DevTools.h"
#include "core/analysis/DeviceBackups.h"
#include "core/cleanup/Cleanup.h"
#include "core/host/UserFolders.h"
#include "core/places/TrashPlace.h"
#include "core/wording/CleanupText.h"
#include "spacemintctl/CleanSteps.h"
#include "spacemintctl/StoredScan.h"

#include <algorithm>
#include <filesystem>

namespace spacemint::ctl {

namespace {

constexpr Bytes cacheMinimum = 50'000'000;
const std::string git = "/usr/bin/git";

std::expected<Snapshot, Error> newestScan() {
  return storedScan(SnapshotStore::standard(), "");
}

bool isThere(const std::string& path) {
  std::error_code failure;
  return std::filesystem::exists(std::filesystem::symlink_status(path, failure));
}

// Of the newest scan, if there is one.
TrashPlace userTrash(const CleanContext& context) {
  const auto scan = newestScan();
  return trashPlace(scan ? &*scan : nullptr, context.wording.home, UserFolders::data());
}

std::expected<CleanStep, Error> cacheStep(const DevTools::FoundCleanup& found, const CleanContext& context) {
  const CleanupTarget& target = *found.target;
  const auto allowed = admitted(Cleanup::cacheRefusal(found, context.guard));
  if (!allowed) return std::unexpected(allowed.error());
  const std::string path = Paths::logical(found.path);
  CleanStep step;
  if (const auto* command = std::get_if<CleanupTarget::Command>(&target.action)) {
    step = commandStep(command->program(), command->arguments(), context);
    step.path = path;
    step.size = found.size;
  } else {
    auto emptied = emptyStep(CleanStep::Kind::emptyCache, path);
    if (!emptied) return emptied;
    step = std::move(*emptied);
  }
  step.label = "Cleaned " + std::string{target.title};
  return step;
}

std::expected<std::vector<DevTools::FoundCleanup>, Error> chosenCaches(const std::vector<std::string>& ids,
                                                                       const Snapshot& scan,
                                                                       const CleanContext& context) {
  auto found = DevTools::cleanups({.in = scan,
                                   .home = context.wording.home,
                                   .minimum = ids.empty() ? cacheMinimum : 0,
                                   .environment = UserFolders::environment});
  if (ids.empty()) return found;
  for (const std::string& id : ids) {
    if (std::ranges::find(DevTools::cleanups(), id, &CleanupTarget::id) == DevTools::cleanups().end()) {
      return std::unexpected(
          cleanError("no cache has the id \"" + id + "\"; \"spacemintctl caches --json\" names them"));
    }
    if (std::ranges::find(found, id, &DevTools::FoundCleanup::id) == found.end()) {
      return std::unexpected(cleanError(id + ": not in the newest scan"));
    }
  }
  std::erase_if(found, [&](const auto& each) { return std::ranges::find(ids, each.id()) == ids.end(); });
  return found;
}

}  // namespace

std::string absolutePath(const std::string& path) {
  if (path.empty() || path.starts_with('/')) return path;
  std::error_code failure;
  const auto folder = std::filesystem::current_path(failure);
  return failure ? path : (folder / path).lexically_normal().string();
}

std::expected<CleanPlan, Error> planPath(const std::string& path, const CleanContext& context) {
  auto step = deleteStep(path, context);
  if (!step) return std::unexpected(step.error());
  return CleanPlan{.question = std::string{CleanupText::deleteQuestion},
                   .notes = {std::string{CleanupText::deleteNote}},
                   .steps = {std::move(*step)},
                   .touched = {path}};
}

std::expected<CleanPlan, Error> planBackup(const std::string& path, const CleanContext& context) {
  const auto scan = newestScan();
  if (!scan) return std::unexpected(scan.error());
  const auto backups = DeviceBackups::find({.in = *scan, .home = context.wording.home});
  const auto found = std::ranges::find_if(backups, [&](const DeviceBackup& backup) {
    return Paths::logical(backup.path) == Paths::withoutTrailingSlash(path);
  });
  if (found == backups.end()) return std::unexpected(cleanError(path + ": no backup of the newest scan"));
  auto step = deleteStep(Paths::logical(found->path), context);
  if (!step) return std::unexpected(step.error());
  step->label = "Deleted the backup of " + found->name;
  return CleanPlan{.question = std::string{CleanupText::deleteBackupQuestion},
                   .notes = {CleanupText::backupNote(found->name)},
                   .steps = {std::move(*step)},
                   .touched = {found->path}};
}

std::expected<CleanPlan, Error> planWorktree(const std::string& given, const CleanContext& context) {
  const std::string path{Paths::withoutTrailingSlash(given)};
  const auto allowed = admitted(Cleanup::refusal(context.guard, {.path = path}));
  if (!allowed) return std::unexpected(allowed.error());
  const auto worktree = GitWorktrees::inspect(path, 0);
  if (!worktree) return std::unexpected(cleanError(path + ": no git worktree"));
  auto step = deleteStep(path, context);
  if (!step) return std::unexpected(step.error());
  const auto changes = worktree->isOrphaned ? std::nullopt : ToolRuns{context.shell}.uncommittedChanges(path);
  const auto removal = Cleanup::worktreeRemoval(*worktree, changes);
  if (const auto* run = std::get_if<Cleanup::RunGit>(&removal)) {
    const auto unmounted = admitted(Cleanup::mountRefusal(path, context.guard));
    if (!unmounted) return std::unexpected(unmounted.error());
    CleanStep command = commandStep(git, run->arguments, context);
    command.path = step->path;
    command.size = step->size;
    *step = std::move(command);
  }
  step->label = "Removed " + worktree->name();
  return CleanPlan{.question = std::string{CleanupText::removeWorktreeQuestion},
                   .notes = {CleanupText::worktreeNote(*worktree, changes)},
                   .steps = {std::move(*step)},
                   .touched = {path}};
}

std::expected<CleanPlan, Error> planTrash(const CleanContext& context) {
  CleanPlan plan{.question = std::string{CleanupText::emptyTrashQuestion},
                 .notes = {std::string{CleanupText::emptyTrashNote}},
                 .isTrash = true,
                 .nothingToDo = "There is no Trash."};
  const TrashPlace trash = userTrash(context);
  for (const std::string& folder : trash.emptied) {
    if (!isThere(folder)) continue;
    auto step = emptyStep(CleanStep::Kind::emptyTrash, folder);
    if (!step) return std::unexpected(step.error());
    step->label = "Emptied the Trash";
    plan.steps.push_back(std::move(*step));
  }
  plan.touched = {trash.folder};
  return plan;
}

std::expected<CleanPlan, Error> planCaches(const std::vector<std::string>& ids, const CleanContext& context) {
  const auto scan = newestScan();
  if (!scan) return std::unexpected(scan.error());
  const auto caches = chosenCaches(ids, *scan, context);
  if (!caches) return std::unexpected(caches.error());
  CleanPlan plan{.question = "Clean up " + std::to_string(caches->size()) + " caches?",
                 .nothingToDo = "No cache is large enough to be worth cleaning."};
  for (const DevTools::FoundCleanup& found : *caches) {
    auto step = cacheStep(found, context);
    const std::string title{found.target->title};
    if (!step && !ids.empty()) return std::unexpected(step.error());
    if (!step) {
      plan.leftOut.push_back(title + ": " + step.error().message);
      continue;
    }
    if (caches->size() == 1) plan.question = "Clean up " + title + "?";
    const std::string shownPath = Paths::display(found.path, context.wording.home);
    plan.notes.push_back(title + ": " + CleanupText::cacheNote(*found.target, shownPath));
    plan.touched.push_back(found.path);
    plan.steps.push_back(std::move(*step));
  }
  return plan;
}

}  // namespace spacemint::ctl
