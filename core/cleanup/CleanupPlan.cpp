#include "core/cleanup/CleanupPlan.h"

#include "core/base/AsciiText.h"
#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/RelativeTime.h"
#include "core/base/TextList.h"
#include "core/base/Translation.h"
#include "core/cleanup/Cleanup.h"
#include "core/cleanup/CleanupText.h"
#include "core/host/AllocatedSize.h"
#include "core/scan/DiskScanner.h"
#include "core/volume/SharedFiles.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>

namespace spacemint {

namespace {

using Kind = CleanupStep::Kind;
using Planned = std::expected<CleanupPlan, CleanupFailure>;

// Creates the plan for each kind of request.
class Planner {
 public:
  Planner(const CleanupContext& context, Date now) : context_(context), now_(now) {}

  Planned operator()(const TrashRequest& file) const {
    const std::string name = isolatedName(Paths::lastComponent(file.path));
    return withStep({.kind = Kind::moveToTrash,
                     .path = file.path,
                     .size = file.size,
                     .label = i18n("Moved “{name}” to the Trash. Empty it to free {size}",
                                   {{"name", name}, {"size", amount(file.size)}})},
                    {.id = file.path,
                     .title = i18n("Move to Trash?"),
                     .subject = sized(Paths::lastComponent(file.path), file.size),
                     .detail = shown(file.path),
                     .note = i18n("You can put it back from the Trash until you empty it."),
                     .button = i18n("Move to Trash"),
                     .touched = {file.path}});
  }

  Planned operator()(const DeleteRequest& item) const {
    return withStep({.path = item.path,
                     .size = item.size,
                     .label = i18n("Deleted {name}", {{"name", isolatedName(item.name)}})},
                    {.id = item.path,
                     .title = i18n("Delete permanently?"),
                     .subject = sized(item.name, item.size),
                     .detail = shown(item.path),
                     .note = sentences({item.note, sharedNote(item.path)}),
                     .button = i18n("Delete"),
                     .touched = {item.path}});
  }

  // Empty for a file that frees its size, and for folders.
  std::string sharedNote(const std::string& path) const {
    const auto freed = SharedFiles::freesAtMost(path);
    return freed ? CleanupText::sharedNote(*freed, context_.locale) : "";
  }

  Planned operator()(const SeveralRequest& several) const {
    CleanupPlan plan;
    std::size_t moved = 0;
    for (const auto& item : withoutInner(several.items)) {
      Planned each = std::visit(*this, item);
      if (!each) {
        plan.refused.push_back(std::move(each).error());
        continue;
      }
      if (std::holds_alternative<TrashRequest>(item)) ++moved;
      plan.items.push_back(std::move(each->subject));
      std::ranges::move(each->steps, std::back_inserter(plan.steps));
      std::ranges::move(each->touched, std::back_inserter(plan.touched));
    }
    if (plan.steps.empty()) {
      return std::unexpected(plan.refused.empty() ? CleanupFailure::refused(i18n("nothing is selected"), "")
                                                  : plan.refused.front());
    }
    plan.id = "several:" + plan.touched.front();
    CleanupText::describeSeveral(plan, moved, context_.locale);
    return plan;
  }

  // An item below another one would be gone when its turn comes.
  static std::vector<std::variant<TrashRequest, DeleteRequest>> withoutInner(
      std::vector<std::variant<TrashRequest, DeleteRequest>> items) {
    const auto pathOf = [](const auto& item) -> const std::string& {
      return std::visit([](const auto& each) -> const std::string& { return each.path; }, item);
    };
    const auto all = items;
    std::erase_if(items, [&](const auto& item) {
      return std::ranges::any_of(all, [&](const auto& other) {
        return pathOf(other) != pathOf(item) && isAtOrBelow(pathOf(item), pathOf(other));
      });
    });
    return items;
  }

  Planned operator()(const EmptyTrashRequest& trash) const {
    const std::string everything = i18n("Everything in the Trash");
    CleanupPlan plan{.id = "trash",
                     .title = i18n("Empty the Trash?"),
                     .subject = trash.size ? sized(everything, *trash.size) : everything,
                     .note = i18n("Deletes everything for good, including hidden items."),
                     .button = i18n("Empty Trash"),
                     .touched = {trash.place.folder},
                     .stopsAtFailure = true};
    const std::string label = i18n("Emptied the Trash");
    if (trash.byFileManager) {
      plan.expected = trash.size.value_or(0);
      plan.steps = {{.kind = Kind::runTool, .command = {"gio", {"trash", "--empty"}}, .label = label}};
      return plan;
    }
    for (const std::string& folder : trash.place.emptied) {
      // The desktop creates the folders of the Trash when it first needs them.
      if (!fileIdentity(folder)) continue;
      auto step = identified({.kind = Kind::emptyTrash, .path = folder, .label = label});
      if (!step) return std::unexpected(step.error());
      plan.steps.push_back(std::move(*step));
    }
    if (!plan.steps.empty()) plan.steps.front().size = trash.size.value_or(0);
    return plan;
  }

  Planned operator()(const DeviceBackup& backup) const {
    std::optional<std::string> age;
    if (backup.lastBackup) {
      age = i18n("Last backed up {age}",
                 {{"age", RelativeTime::age(*backup.lastBackup, now_, context_.locale)}});
    }
    const std::string path = Paths::logical(backup.path);
    return withStep(
        {.path = path,
         .size = backup.size,
         .label = i18n("Deleted the backup of {device}", {{"device", isolatedName(backup.name)}})},
        {.id = backup.path,
         .title = i18n("Delete this backup?"),
         .subject = sized(backup.name, backup.size),
         .detail = age,
         .note = CleanupText::backupNote(backup.name),
         .button = i18n("Delete backup"),
         .touched = {backup.path}});
  }

  Planned operator()(const GitWorktree& worktree) const {
    CleanupStep step{.path = worktree.path,
                     .size = worktree.size,
                     .label = i18n("Removed {name}", {{"name", isolatedName(worktree.name())}})};
    // Ask the guard before counting changes: counting runs git in the folder.
    step.kind = Kind::removeWorktree;
    if (auto refused = refusalOf(step)) return std::unexpected(*refused);
    step.worktree = worktreeContents(worktree.path, context_);
    if (step.worktree.repositoryPath) {
      step.command = gitRemoval(worktree.path, step.worktree);
    } else {
      step.kind = Kind::deleteItem;
    }
    std::string warning = CleanupText::worktreeWarning(step.worktree);
    std::string note = CleanupText::worktreeNote(worktree, step.worktree);
    return withStep(std::move(step), {.id = worktree.path,
                                      .title = i18n("Remove this worktree?"),
                                      .subject = sized(worktree.name(), worktree.size),
                                      .detail = shown(worktree.path),
                                      .warning = std::move(warning),
                                      .note = std::move(note),
                                      .button = i18n("Remove worktree"),
                                      .touched = {worktree.path}});
  }

  Planned operator()(const DevTools::FoundCleanup& found) const {
    const CleanupTarget& target = *found.target;
    const std::string title = i18n(target.title);
    CleanupStep step{.kind = Kind::emptyFolder,
                     .path = Paths::logical(found.path),
                     .size = found.size,
                     .label = i18n("Cleaned {cache}", {{"cache", title}})};
    if (const auto* command = std::get_if<CleanupTarget::Command>(&target.action)) {
      step.kind = Kind::runTool;
      step.command = {command->program(), command->arguments()};
      const auto variable = command->pinned(step.path);
      if (variable) step.command.environment.insert(*variable);
      if (!variable && !command->pin.empty()) {
        return std::unexpected(
            CleanupFailure::refused(i18n("{item} has a name that `{program}` does not take",
                                         {{"item", shownPath(step.path)}, {"program", command->program()}}),
                                    step.path));
      }
    }
    return withStep(std::move(step), {.id = std::string{found.id()},
                                      .title = i18n("Clean up {cache}?", {{"cache", title}}),
                                      .subject = sized(title, found.size),
                                      .note = CleanupText::cacheNote(target, shownPath(found.path)),
                                      .button = i18n("Clean up"),
                                      .touched = {found.path}});
  }

  Planned operator()(const DockerPruneRequest& docker) const {
    CleanupPlan plan{
        .id = "docker",
        .title = i18n("Clean up Docker?"),
        .subject = i18n("About {size} of unused data", {{"size", amount(docker.reclaimable)}}),
        .note = i18n("Runs `docker system prune -a`. Removes stopped containers, unused images and "
                     "build cache. Keeps volumes."),
        .button = i18n("Clean up"),
        .touched = dockerFolders(),
        .estimate = docker.reclaimable};
    CleanupStep step{.kind = Kind::runTool,
                     .command = {"docker", {"system", "prune", "-a", "-f"}},
                     .label = i18n("Cleaned up Docker")};
    if (docker.volumes) {
      plan.id = "docker-volumes";
      plan.title = i18n("Remove unused volumes?");
      plan.subject =
          i18n("About {size} in volumes no container uses", {{"size", amount(docker.reclaimable)}});
      plan.note =
          i18n("Runs `docker volume prune -a`. Data in these volumes, like old databases, is gone for good.");
      plan.button = i18n("Remove volumes");
      step.command.arguments = {"volume", "prune", "-a", "-f"};
      step.label = i18n("Removed unused Docker volumes");
    }
    plan.steps.push_back(std::move(step));
    return plan;
  }

  Planned operator()(const DevTools::OllamaModel& model) const {
    return CleanupPlan{
        .id = "ollama:" + model.name,
        .title = i18n("Remove this model?"),
        .subject = sized(model.name, model.size),
        .note = i18n("Runs `ollama rm {model}`. You can pull it again.", {{"model", model.name}}),
        .button = i18n("Remove"),
        .steps = {{.kind = Kind::runTool,
                   .command = {"ollama", {"rm", model.name}},
                   .label = i18n("Removed {name}", {{"name", model.name}})}},
        .touched = {inHome(".ollama/models")},
        .estimate = model.size};
  }

 private:
  // Use --force only if changes were counted and shown. If they could not be counted, git itself refuses to
  // remove a changed worktree.
  static ToolCommand gitRemoval(const std::string& path, const WorktreeContents& contents) {
    ToolCommand command{gitProgram, gitArguments(*contents.repositoryPath)};
    auto& arguments = command.arguments;
    arguments.insert(arguments.end(), {"worktree", "remove"});
    if (contents.changes.value_or(0) >= 1) arguments.emplace_back("--force");
    arguments.push_back(path);
    return command;
  }

  Planned withStep(CleanupStep step, CleanupPlan plan) const {
    auto known = identified(std::move(step));
    if (!known) return std::unexpected(known.error());
    plan.steps.push_back(std::move(*known));
    return plan;
  }

  // Adds the identity of the step's item. Fails if the guard refuses the item or the item cannot be read.
  std::expected<CleanupStep, CleanupFailure> identified(CleanupStep step) const {
    if (auto refused = refusalOf(step)) return std::unexpected(*refused);
    const auto identity = Cleanup::identityOf(step);
    const bool isGone =
        !identity && (identity.error().isSystem(ENOENT) || identity.error().isSystem(ENOTDIR));
    if (!identity && !isGone) {
      return std::unexpected(
          CleanupFailure{CleanupFailure::Kind::other, identity.error().message, step.path});
    }
    step.identity = identity.value_or(FileIdentity{});
    return step;
  }

  std::optional<CleanupFailure> refusalOf(const CleanupStep& step) const {
    return Cleanup::refusalOf(step, context_.guard);
  }

  std::vector<std::string> dockerFolders() const {
    return {inHome("Library/Group Containers/HUAQ24HBR6.dev.orbstack/data"),
            inHome("Library/Containers/com.docker.docker/Data/vms"), Paths::join(context_.data, "docker")};
  }
  std::string inHome(std::string_view name) const { return Paths::join(context_.guard.home(), name); }
  std::string amount(Bytes size) const { return ByteFormat::string(size, context_.locale); }
  std::string sized(std::string_view name, Bytes size) const {
    return facts({isolatedName(name), amount(size)});
  }
  std::string shownPath(const std::string& path) const { return Paths::display(path, context_.guard.home()); }
  std::string shown(const std::string& path) const { return isolatedPath(shownPath(path)); }

  const CleanupContext& context_;
  Date now_;
};

// What goes with the items although scans leave it out.
ExcludedSum excludedIn(const CleanupPlan& plan, const Snapshot& scan) {
  ExcludedSum sum;
  for (const CleanupStep& step : plan.steps) {
    if (step.path.empty()) continue;
    const auto [items, unknown, size] = scan.coverage.excludedBelow(scan.resolve(step.path));
    sum.items += items;
    sum.unknown += unknown;
    sum.size = saturatingAdd(sum.size, size);
  }
  return sum;
}

}  // namespace

std::vector<std::string> gitArguments(const std::string& folder) {
  return {"-c", "core.fsmonitor=false", "-c", "core.hooksPath=/dev/null", "-C", folder};
}

Bytes CleanupPlan::size() const {
  Bytes sum = 0;
  for (const CleanupStep& step : steps) sum = saturatingAdd(sum, step.size);
  return sum;
}

Planned planCleanup(const CleanupRequest& request, const CleanupContext& context, Date now) {
  Planned plan = std::visit(Planner{context, now}, request);
  if (plan && context.scan) {
    const std::string excluded =
        CleanupText::excludedWarning(excludedIn(*plan, *context.scan), context.locale);
    plan->warning = sentences({plan->warning, excluded});
  }
  return plan;
}

CleanupPlan mergedPlans(std::string title, std::vector<CleanupPlan> plans) {
  if (plans.size() == 1) return std::move(plans.front());
  CleanupPlan merged{.id = title, .title = std::move(title)};
  for (CleanupPlan& plan : plans) {
    // "Clean up npm cache?" becomes "npm cache: Runs ...".
    const std::string subject = plan.subject.substr(0, plan.subject.rfind(" · "));
    merged.note +=
        (merged.note.empty() ? "" : "\n") +
        i18n("{subject}: {note}", {{"subject", subject}, {"note", sentences({plan.warning, plan.note})}});
    std::ranges::move(plan.steps, std::back_inserter(merged.steps));
    std::ranges::move(plan.touched, std::back_inserter(merged.touched));
  }
  return merged;
}

void measurePlan(CleanupPlan& plan) {
  constexpr Bytes partMinimum = 1'000'000;
  constexpr std::size_t partLimit = 10;
  for (CleanupStep& step : plan.steps) {
    if (step.path.empty()) continue;
    const auto folder = DiskScanner::scan({.root = step.path, .minNodeSize = partMinimum});
    step.size = folder ? folder->root.size : allocatedSize(step.path).value_or(0);
    if (!folder || (step.kind != Kind::emptyFolder && step.kind != Kind::emptyTrash)) continue;
    for (const Node& child : folder->root.children) {
      if (step.parts.size() < partLimit) step.parts.push_back({child.name, child.size});
    }
  }
}

WorktreeContents worktreeContents(const std::string& path, const CleanupContext& context) {
  WorktreeContents contents;
  const auto worktree = GitWorktrees::inspect(path, 0);
  if (worktree && !worktree->isOrphaned) {
    contents.repositoryPath = worktree->repositoryPath;
    contents.changes = context.uncommittedChanges(path);
  }
  const auto nested = GitWorktrees::nestedIn(path);
  if (!nested) contents.changes.reset();
  for (const std::string& name : nested.value_or(std::vector<std::string>{})) {
    const std::string at = Paths::join(path, name);
    contents.nested.push_back({.path = name,
                               .isRepository = std::filesystem::is_directory(Paths::join(at, ".git")),
                               .changes = context.uncommittedChanges(at)});
  }
  return contents;
}

}  // namespace spacemint
