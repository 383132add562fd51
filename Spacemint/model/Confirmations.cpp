#include "Spacemint/model/Confirmations.h"

#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/RelativeTime.h"
#include "core/wording/CleanupText.h"

namespace spacemint {

namespace {

// What is not there when it is shown has an identity that nothing else has, and so will not be removed.
FileIdentity identityOf(const std::string& path) {
  return fileIdentity(Paths::logical(path)).value_or(FileIdentity{});
}

}  // namespace

void Confirmations::dismiss() {
  if (!current_) return;
  current_.reset();
  Q_EMIT changed();
}

void Confirmations::show(Confirmation confirmation) {
  confirmation.id = QUuid::createUuid();
  current_ = std::move(confirmation);
  Q_EMIT changed();
}

void Confirmations::askToTrash(const FileItem& file, std::function<void(const FileItem&)> trash) {
  show({.title = "Move to Trash?",
        .subject = sized(Paths::lastComponent(file.path), file.size),
        .detail = shown(file.path),
        .note = "You can put it back from the Trash until you empty it.",
        .actionTitle = "Move to Trash",
        .perform = [file, trash = std::move(trash)] { trash(file); }});
}

void Confirmations::askToDelete(const std::string& path, const std::string& name, Bytes size,
                                const std::string& note) {
  show({.title = std::string{CleanupText::deleteQuestion},
        .subject = sized(name, size),
        .detail = shown(path),
        .note = note,
        .actionTitle = "Delete",
        .perform = performing(parts_.jobs.deleteItem(path, name, identityOf(path)))});
}

void Confirmations::askToEmptyTrash(bool mayLookInside) {
  const Snapshot* scan = parts_.history.snapshot().get();
  const TrashPlace place = trashPlace(scan, words_.home, words_.data);
  const Node* node = scan != nullptr ? scan->nodeAt(place.folder) : nullptr;
  const std::string all = "Everything in the Trash";
  show({.title = std::string{CleanupText::emptyTrashQuestion},
        .subject = node != nullptr ? sized(all, node->size) : all,
        .note = std::string{CleanupText::emptyTrashNote},
        .actionTitle = "Empty Trash",
        .perform = performing(
            mayLookInside ? parts_.jobs.emptyTrash(place)
                          : parts_.jobs.emptyTrashByFileManager(place, node != nullptr ? node->size : 0))});
}

void Confirmations::askToDeleteBackup(const DeviceBackup& backup) {
  std::optional<std::string> age;
  if (backup.lastBackup) {
    age = "Last backed up " + RelativeTime::age(*backup.lastBackup, desktop_.clock.now(), words_.locale);
  }
  show({.title = std::string{CleanupText::deleteBackupQuestion},
        .subject = sized(backup.name, backup.size),
        .detail = age,
        .note = CleanupText::backupNote(backup.name),
        .actionTitle = "Delete backup",
        .perform = performing(parts_.jobs.deleteBackup(backup, identityOf(backup.path)))});
}

void Confirmations::askToRemoveWorktree(const GitWorktree& worktree) {
  if (worktree.isOrphaned) return askToRemoveWorktree(worktree, std::nullopt);
  desktop_.tasks
      .run(Tasks::Priority::userInitiated,
           [tools = parts_.tools, path = worktree.path] { return tools.uncommittedChanges(path); })
      .then(whileAlive(
          this, [this, worktree](std::optional<int> changes) { askToRemoveWorktree(worktree, changes); }));
}

void Confirmations::askToRemoveWorktree(const GitWorktree& worktree, std::optional<int> changes) {
  show({.title = std::string{CleanupText::removeWorktreeQuestion},
        .subject = sized(worktree.name(), worktree.size),
        .detail = shown(worktree.path),
        .note = CleanupText::worktreeNote(worktree, changes),
        .actionTitle = "Remove worktree",
        .perform = performing(parts_.jobs.removeWorktree(worktree, changes, identityOf(worktree.path)))});
}

void Confirmations::askToCleanUp(const DevTools::FoundCleanup& found) {
  show({.title = "Clean up " + std::string{found.target->title} + "?",
        .subject = sized(found.target->title, found.size),
        .note = CleanupText::cacheNote(*found.target, Paths::display(found.path, words_.home)),
        .actionTitle = "Clean up",
        .perform = performing(parts_.jobs.cleanCache(found, identityOf(found.path)))});
}

void Confirmations::askToPruneDocker() {
  show({.title = "Clean up Docker?",
        .subject = "About " + amount(parts_.developerTools.dockerReclaimable()) + " of unused data",
        .note = "Runs `docker system prune -a`. Removes stopped containers, unused images and build cache. "
                "Keeps volumes.",
        .actionTitle = "Clean up",
        .perform = performing(parts_.jobs.pruneDocker())});
}

void Confirmations::askToPruneDockerVolumes() {
  show({.title = "Remove unused volumes?",
        .subject = "About " + amount(parts_.developerTools.dockerVolumesReclaimable()) +
                   " in volumes no container uses",
        .note = "Runs `docker volume prune -a`. Data in these volumes, like old databases, is gone for good.",
        .actionTitle = "Remove volumes",
        .perform = performing(parts_.jobs.pruneDockerVolumes())});
}

void Confirmations::askToRemoveOllamaModel(const DevTools::OllamaModel& model) {
  show({.title = "Remove this model?",
        .subject = sized(model.name, model.size),
        .note = "Runs `ollama rm " + model.name + "`. You can pull it again.",
        .actionTitle = "Remove",
        .perform = performing(parts_.jobs.removeOllamaModel(model))});
}

std::function<void()> Confirmations::performing(CleanupJob job) {
  return [&runs = parts_.runs, job = std::move(job)] { runs.perform(job); };
}

std::string Confirmations::sized(std::string_view name, Bytes size) const {
  return isolatedName(name) + " · " + amount(size);
}

std::string Confirmations::amount(Bytes size) const {
  return ByteFormat::string(size, words_.locale);
}

std::string Confirmations::shown(const std::string& path) const {
  return isolatedPath(Paths::display(path, words_.home));
}

}  // namespace spacemint
