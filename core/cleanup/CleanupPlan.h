#pragma once

#include "core/analysis/DevTools.h"
#include "core/analysis/DeviceBackups.h"
#include "core/analysis/GitWorktrees.h"
#include "core/analysis/OllamaModels.h"
#include "core/cleanup/CleanupFailure.h"
#include "core/cleanup/DeletionGuard.h"
#include "core/host/TrashCan.h"
#include "core/places/TrashPlace.h"

#include <expected>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace spacemint {

/// A program with its arguments, and variables to set in its environment.
struct ToolCommand {
  /// A name that is searched for, or an absolute path.
  std::string program;
  std::vector<std::string> arguments;
  std::map<std::string, std::string> environment = {};

  bool operator==(const ToolCommand&) const = default;
};

/// By its full path: another program of that name earlier on the search path would act on repositories.
inline const std::string gitProgram = "/usr/bin/git";

/// The first arguments of every run of git: it starts no file-system monitor, runs no hook of a repository,
/// and works in `folder`.
std::vector<std::string> gitArguments(const std::string& folder);

/// What the removal of a git worktree takes along.
struct WorktreeContents {
  struct Nested {
    /// Relative to the worktree.
    std::string path;
    /// A whole repository with its commits, not just another worktree.
    bool isRepository = false;
    std::optional<int> changes;
    bool operator==(const Nested&) const = default;
  };

  /// Of the repository that knows the worktree; absent for an orphan.
  std::optional<std::string> repositoryPath;
  /// How many files git calls changed; absent where that could not be counted.
  std::optional<int> changes;
  std::vector<Nested> nested;

  bool operator==(const WorktreeContents&) const = default;
};

/// One thing that a clean-up does.
struct CleanupStep {
  enum class Kind : std::uint8_t {
    deleteItem,
    emptyFolder,
    emptyTrash,
    moveToTrash,
    runTool,
    removeWorktree
  };

  /// Something large in a folder that will be emptied.
  struct Part {
    std::string name;
    Bytes size = 0;
  };

  Kind kind = Kind::deleteItem;
  /// The item to remove or the folder that a tool cleans; empty for a tool whose data lies elsewhere.
  std::string path = {};
  /// The item as it was when the plan was made. Another one in its place is left alone.
  std::optional<FileIdentity> identity = {};
  Bytes size = 0;
  std::vector<Part> parts = {};
  /// Of `runTool` and `removeWorktree`.
  ToolCommand command = {};
  /// Of `removeWorktree`.
  WorktreeContents worktree = {};
  /// What was done, as the start of a sentence: "Deleted old.zip".
  std::string label = {};

  /// False for an item that was gone when the plan was made; its step will fail.
  bool wasThere() const { return path.empty() || identity != FileIdentity{}; }
  bool runsCommand() const { return kind == Kind::runTool || kind == Kind::removeWorktree; }
};

/// All that a clean-up will do, as data. It is shown, confirmed and carried out, and does not change in
/// between.
struct CleanupPlan {
  /// Two clean-ups of one id never run at once.
  std::string id;
  std::string title;
  /// What is affected, usually a name and a size.
  std::string subject = {};
  std::optional<std::string> detail = {};
  /// What will happen; lines for several steps.
  std::string note = {};
  std::string button = {};
  std::vector<CleanupStep> steps = {};
  /// Paths of the stored scan to measure again afterwards.
  std::vector<std::string> touched = {};
  /// How much a tool says that it can free.
  std::optional<Bytes> estimate = {};
  /// The first step that fails ends the whole.
  bool stopsAtFailure = false;
  /// The size of a Trash that the file manager empties: whether it did shows only in the free space.
  std::optional<Bytes> expected = {};

  Bytes size() const;
};

/// The note of a question about a person's own file or folder.
inline const std::string deleteNote = "This removes it for good.";

struct TrashRequest {
  std::string path;
  Bytes size = 0;
};
struct DeleteRequest {
  std::string path;
  std::string name;
  Bytes size = 0;
  std::string note;
};
struct EmptyTrashRequest {
  TrashPlace place;
  std::optional<Bytes> size = {};
  /// For when this program may not look into the Trash itself.
  bool byFileManager = false;
};
struct DockerPruneRequest {
  bool volumes = false;
  Bytes reclaimable = 0;
};

/// What can be asked for. Everything that removes begins with one of these.
using CleanupRequest = std::variant<TrashRequest, DeleteRequest, EmptyTrashRequest, DeviceBackup, GitWorktree,
                                    DevTools::FoundCleanup, DockerPruneRequest, DevTools::OllamaModel>;

/// What clean-ups need of the rest of the program. A value; its functions may be called on any thread.
struct CleanupContext {
  /// False stops a tool that runs.
  using MayGoOn = std::function<bool()>;

  DeletionGuard guard;
  /// Where programs keep their data.
  std::string data;
  std::string locale;
  /// Restores what `moveToTrash` moves. Outlives the context.
  TrashCan* trash = nullptr;
  /// Runs a tool to its end; why it did not do its work, or nothing.
  std::function<std::optional<CleanupFailure>(const ToolCommand& command, const MayGoOn& mayGoOn)> run = {};
  /// How many files of a working tree git calls changed; absent where git could not be asked.
  std::function<std::optional<int>(const std::string& path)> uncommittedChanges = {};
  /// Free bytes of the user's volume; absent where it cannot be read.
  std::function<std::optional<Bytes>()> freeBytes = {};
};

/// The plan for a request: texts, steps and the identity of each item. Fails where the guard refuses an item,
/// or one cannot be looked at. Blocks for a worktree, whose changes are counted; else it looks at single
/// items only. `now` words the age of a backup.
std::expected<CleanupPlan, CleanupFailure> planCleanup(const CleanupRequest& request,
                                                       const CleanupContext& context, Date now);

/// One plan for several, each with its own notes and steps.
CleanupPlan mergedPlans(std::string title, std::vector<CleanupPlan> plans);

/// Measures the items of a plan on the disk, and names the largest parts of folders that will be emptied.
void measurePlan(CleanupPlan& plan);

/// The contents of the worktree now.
WorktreeContents worktreeContents(const std::string& path, const CleanupContext& context);

}  // namespace spacemint
