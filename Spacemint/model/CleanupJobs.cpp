#include "Spacemint/model/CleanupJobs.h"

#include "core/base/Isolate.h"
#include "core/cleanup/Cleanup.h"
#include "core/tree/Paths.h"

#include <algorithm>

namespace spacemint {

namespace {

using Failure = CleanupJob::Failure;

// The file manager is done before its work shows in the volume's figures.
constexpr std::chrono::seconds trashSettlingTime{2};
// Only of a Trash this large can be told from the free space whether all of it went.
constexpr Bytes tellingTrash = 1'000'000'000;

bool isThere(const std::string& path) {
  return fileIdentity(path).has_value();
}

Failure emptyFolders(const std::vector<std::string>& folders, const DeletionGuard& guard) {
  const auto removal = hostRemoval();
  for (const std::string& folder : folders) {
    if (!isThere(folder)) continue;
    if (auto failure = Cleanup::deleteContents({.of = folder, .guard = guard, .fileManager = *removal})) {
      return failure;
    }
  }
  return std::nullopt;
}

Failure emptyCache(const DevTools::FoundCleanup& found, FileIdentity identity, const DeletionGuard& guard) {
  const auto removal = hostRemoval();
  return Cleanup::emptyCache(
      {.of = found.path, .guard = guard, .fileManager = *removal, .identity = identity});
}

Bytes freeOf(const std::optional<VolumeStatus>& reading) {
  return reading ? reading->free : 0;
}

}  // namespace

template <class Work>
std::function<QFuture<Failure>()> CleanupJobs::inBackground(Work work) const {
  return [&tasks = desktop_.tasks, work = std::move(work)] {
    return tasks.run(Tasks::Priority::userInitiated, work);
  };
}

std::function<QFuture<Failure>()> CleanupJobs::deletion(const std::string& path,
                                                        FileIdentity identity) const {
  return inBackground([path, identity, guard = parts_.guard] {
    const auto removal = hostRemoval();
    return Cleanup::deleteItem({.path = path, .guard = guard, .fileManager = *removal, .identity = identity});
  });
}

std::function<QFuture<Failure>()> CleanupJobs::toolRun(const char* program,
                                                       std::vector<std::string> arguments) const {
  return inBackground([runs = parts_.runs, program, arguments = std::move(arguments)] {
    return runs.clean(program, arguments);
  });
}

CleanupJob CleanupJobs::deleteItem(const std::string& path, const std::string& name,
                                   FileIdentity identity) const {
  return {.id = path,
          .label = "Deleted " + isolatedName(name),
          .remeasure = {path},
          .work = deletion(path, identity)};
}

CleanupJob CleanupJobs::deleteBackup(const DeviceBackup& backup, FileIdentity identity) const {
  return {.id = backup.path,
          .label = "Deleted the backup of " + isolatedName(backup.name),
          .remeasure = {backup.path},
          .work = deletion(backup.path, identity)};
}

CleanupJob CleanupJobs::removeWorktree(const GitWorktree& worktree, std::optional<int> changes,
                                       FileIdentity identity) const {
  CleanupJob job{.id = worktree.path,
                 .label = "Removed " + isolatedName(worktree.name()),
                 .remeasure = {worktree.path},
                 .work = {}};
  auto removal = Cleanup::worktreeRemoval(worktree, changes);
  if (auto* git = std::get_if<Cleanup::RunGit>(&removal)) {
    // Git would empty what is mounted in it.
    job.work = inBackground([path = worktree.path, guard = parts_.guard, runs = parts_.runs,
                             arguments = std::move(git->arguments)] {
      const Failure refused = Cleanup::mountRefusal(path, guard);
      return refused ? refused : runs.git(arguments);
    });
  } else {
    job.work = deletion(worktree.path, identity);
  }
  return job;
}

CleanupJob CleanupJobs::cleanCache(const DevTools::FoundCleanup& found, FileIdentity identity) const {
  return {.id = std::string{found.id()},
          .label = "Cleaned " + std::string{found.target->title},
          .remeasure = {found.path},
          .work = inBackground([found, identity, guard = parts_.guard, runs = parts_.runs] {
            if (auto refused = Cleanup::cacheRefusal(found, guard)) return Failure{refused};
            const auto* command = std::get_if<CleanupTarget::Command>(&found.target->action);
            if (command == nullptr) return emptyCache(found, identity, guard);
            return runs.clean(command->program(), command->arguments());
          })};
}

CleanupJob CleanupJobs::emptyTrash(const TrashPlace& trash) const {
  return {.id = CleanupRuns::trashId,
          .label = "Emptied the Trash",
          .remeasure = {trash.folder},
          .work = inBackground(
              [folders = trash.emptied, guard = parts_.guard] { return emptyFolders(folders, guard); })};
}

CleanupJob CleanupJobs::emptyTrashByFileManager(const TrashPlace& trash, Bytes expected) {
  const auto run = inBackground([runs = parts_.runs] { return runs.emptyTrash(); });
  const auto wasEmptied = [expected](Bytes before, Bytes after) {
    return expected <= tellingTrash || saturatingSubtract(after, before) >= expected / 2;
  };
  const auto work = [this, run, wasEmptied] {
    const auto before = std::make_shared<Bytes>(0);
    const auto look = [this, before, wasEmptied](bool) {
      return parts_.volume.read().then(
          whileAlive(this, [before, wasEmptied](const std::optional<VolumeStatus>& after) {
            return wasEmptied(*before, freeOf(after)) ? Failure{} : CleanupFailure::needsFullDiskAccess();
          }));
    };
    return parts_.volume.read()
        .then(whileAlive(this,
                         [before, run](const std::optional<VolumeStatus>& reading) {
                           *before = freeOf(reading);
                           return run();
                         }))
        .unwrap()
        .then(whileAlive(
            this,
            [this, look](const Failure& failure) {
              if (failure) return QtFuture::makeReadyFuture(failure);
              return desktop_.clock.wait(trashSettlingTime, this).then(whileAlive(this, look)).unwrap();
            }))
        .unwrap();
  };
  return {.id = CleanupRuns::trashId,
          .label = "Emptied the Trash",
          .remeasure = {trash.folder},
          .assumeEmptied = true,
          .work = work};
}

CleanupJob CleanupJobs::pruneDocker() const {
  return dockerRun({.id = "docker",
                    .label = "Cleaned up Docker",
                    .estimate = parts_.developerTools.dockerReclaimable(),
                    .work = toolRun("docker", {"system", "prune", "-a", "-f"})});
}

CleanupJob CleanupJobs::pruneDockerVolumes() const {
  return dockerRun({.id = "docker-volumes",
                    .label = "Removed unused Docker volumes",
                    .estimate = parts_.developerTools.dockerVolumesReclaimable(),
                    .work = toolRun("docker", {"volume", "prune", "-a", "-f"})});
}

// Docker's own folders hold less afterwards, and it says itself what is left.
CleanupJob CleanupJobs::dockerRun(CleanupJob job) const {
  job.remeasure = {Paths::join(places_.home, "Library/Group Containers/HUAQ24HBR6.dev.orbstack/data"),
                   Paths::join(places_.home, "Library/Containers/com.docker.docker/Data/vms"),
                   Paths::join(places_.data, "docker")};
  job.then = [&tools = parts_.developerTools] { return tools.refreshDocker(); };
  return job;
}

CleanupJob CleanupJobs::removeOllamaModel(const DevTools::OllamaModel& model) const {
  return {.id = "ollama:" + model.name,
          .label = "Removed " + model.name,
          .estimate = model.size,
          .remeasure = {Paths::join(places_.home, ".ollama/models")},
          .work = toolRun("ollama", {"rm", model.name}),
          .then = [&tools = parts_.developerTools] { return tools.refreshOllama(); }};
}

}  // namespace spacemint
