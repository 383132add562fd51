#pragma once

#include "core/analysis/DevTools.h"
#include "core/analysis/DeviceBackups.h"
#include "core/analysis/GitWorktrees.h"
#include "core/analysis/OllamaModels.h"
#include "core/base/Translation.h"
#include "core/cleanup/CleanupFailure.h"
#include "core/cleanup/DeletionGuard.h"
#include "core/host/TrashCan.h"
#include "core/places/TrashPlace.h"
#include "core/tree/Snapshot.h"

#include <expected>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace spacemint {

/// A command: a program, its arguments, and environment variables to set.
struct ToolCommand {
  /// A name to look up on the search path, or an absolute path.
  std::string program;
  std::vector<std::string> arguments;
  std::map<std::string, std::string> environment = {};

  bool operator==(const ToolCommand&) const = default;
};

/// The full path, so that no other program named "git" on the search path runs in the user's repositories.
inline const std::string gitProgram = "/usr/bin/git";

/// The first arguments of every git command: no file-system monitor, no hooks of the repository, and `folder`
/// as the working folder.
std::vector<std::string> gitArguments(const std::string& folder);

/// Contents of a git worktree that its removal deletes.
struct WorktreeContents {
  struct Nested {
    /// The path relative to the worktree.
    std::string path;
    /// True for a repository with its own commits, false for a worktree of another repository.
    bool isRepository = false;
    std::optional<int> changes;
    bool operator==(const Nested&) const = default;
  };

  /// The path of the worktree's repository; absent for an orphaned worktree.
  std::optional<std::string> repositoryPath;
  /// The number of files that git reports as changed; absent if git could not report it.
  std::optional<int> changes;
  std::vector<Nested> nested;

  bool operator==(const WorktreeContents&) const = default;
};

/// A single action of a clean-up.
struct CleanupStep {
  enum class Kind : std::uint8_t {
    deleteItem,
    emptyFolder,
    emptyTrash,
    moveToTrash,
    runTool,
    removeWorktree
  };

  /// A large item in a folder that will be emptied.
  struct Part {
    std::string name;
    Bytes size = 0;
  };

  Kind kind = Kind::deleteItem;
  /// The item to remove, or the folder that a tool cleans; empty for a tool without a known folder.
  std::string path = {};
  /// The identity of the item when the plan was created; zero if there was no item. If another item is at the
  /// path later, the step fails.
  FileIdentity identity = {};
  Bytes size = 0;
  std::vector<Part> parts = {};
  /// The command of `runTool` and `removeWorktree`.
  ToolCommand command = {};
  /// The contents of the worktree when the plan was created; for `removeWorktree`.
  WorktreeContents worktree = {};
  /// The start of the sentence that reports success: "Deleted old.zip".
  std::string label = {};

  /// False if the item did not exist when the plan was created; the step will then fail.
  bool wasThere() const { return path.empty() || identity != FileIdentity{}; }
  bool runsCommand() const { return kind == Kind::runTool || kind == Kind::removeWorktree; }
};

/// A clean-up as data: the texts of the question, and the steps. The plan that the user confirms is carried
/// out unchanged.
struct CleanupPlan {
  /// Two clean-ups with the same id never run at the same time.
  std::string id;
  std::string title;
  /// The affected item, usually its name and size.
  std::string subject = {};
  std::optional<std::string> detail = {};
  /// What is lost besides the item; empty for nothing.
  std::string warning = {};
  /// What the clean-up will do; several lines for several steps.
  std::string note = {};
  std::string button = {};
  /// Of a request for several items: the name and size of each that will be removed.
  std::vector<std::string> items = {};
  std::vector<CleanupStep> steps = {};
  /// Why some of the items that were asked for stay.
  std::vector<CleanupFailure> refused = {};
  /// Paths in the stored scan to measure again after the clean-up.
  std::vector<std::string> touched = {};
  /// How many bytes a tool reports as reclaimable.
  std::optional<Bytes> estimate = {};
  /// True if the first failed step ends the clean-up.
  bool stopsAtFailure = false;
  /// The size of a Trash that the file manager empties. Only the free space shows whether it succeeded.
  std::optional<Bytes> expected = {};

  Bytes size() const;
};

/// The note of the question before deleting one of the user's own files or folders.
inline constexpr const char* deleteNote = i18nMark("This removes it for good.");

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
/// Several files and folders with one question. Each item is planned and judged by itself; items below
/// another one go with it.
struct SeveralRequest {
  std::vector<std::variant<TrashRequest, DeleteRequest>> items;
};
struct EmptyTrashRequest {
  TrashPlace place;
  std::optional<Bytes> size = {};
  /// True if this program has no access to the Trash and asks the file manager to empty it.
  bool byFileManager = false;
};
struct DockerPruneRequest {
  bool volumes = false;
  Bytes reclaimable = 0;
};

/// A request to clean up. Every removal starts with a request.
using CleanupRequest =
    std::variant<TrashRequest, DeleteRequest, SeveralRequest, EmptyTrashRequest, DeviceBackup, GitWorktree,
                 DevTools::FoundCleanup, DockerPruneRequest, DevTools::OllamaModel>;

/// What clean-ups need from the rest of the program. All function members may be called on any thread.
struct CleanupContext {
  /// Called while a tool runs; false stops the tool.
  using MayGoOn = std::function<bool()>;

  DeletionGuard guard;
  /// The user's data folder (`UserFolders::data`).
  std::string data;
  std::string locale;
  /// The scan by which the sizes are shown: a plan warns of what the user excluded from it. Null if sizes are
  /// measured on the disk.
  std::shared_ptr<const Snapshot> scan = {};
  /// The Trash for `moveToTrash`. Must outlive the context.
  TrashCan* trash = nullptr;
  /// Runs a tool and waits until it ends. Returns the failure, or nothing on success.
  std::function<std::optional<CleanupFailure>(const ToolCommand& command, const MayGoOn& mayGoOn)> run = {};
  /// Returns the number of files in a working tree that git reports as changed, or nothing if git failed.
  std::function<std::optional<int>(const std::string& path)> uncommittedChanges = {};
  /// Returns the free bytes of the user's volume, or nothing if the volume cannot be read.
  std::function<std::optional<Bytes>()> freeBytes = {};
};

/// Creates the plan for a request: texts, steps and the identity of each item. Fails if the guard refuses an
/// item or an item cannot be read; of several items, if that is so for all. Fast, except for a worktree,
/// where it blocks while git counts changes. `now` is used for the age of a backup. Any thread.
std::expected<CleanupPlan, CleanupFailure> planCleanup(const CleanupRequest& request,
                                                       const CleanupContext& context, Date now);

/// Merges several plans into one, with the notes and steps of all.
CleanupPlan mergedPlans(std::string title, std::vector<CleanupPlan> plans);

/// Measures the items of a plan on the disk: sets the size of each step, and the largest parts of folders
/// that will be emptied. Blocks; any thread.
void measurePlan(CleanupPlan& plan);

/// Reads the current contents of the worktree at `path`. Runs git; blocks; any thread.
WorktreeContents worktreeContents(const std::string& path, const CleanupContext& context);

}  // namespace spacemint
