#include "Spacemint/tools/ToolRuns.h"

#include "core/base/AsciiText.h"
#include "core/cleanup/Cleanup.h"
#include "core/cleanup/ToolOutcome.h"

namespace spacemint {

namespace {

// By its full path: another program of that name earlier on the search path would act on repositories.
const std::string gitProgram = "/usr/bin/git";
const std::string trashProgram = "gio";

std::optional<DevTools::ToolAnswer> answerOf(const Shell& shell, Shell::Run run) {
  auto output = shell.run(std::move(run)).get();
  if (!output) return std::nullopt;
  return DevTools::ToolAnswer{.status = output->status,
                              .output = std::move(output->output),
                              .error = std::move(output->error),
                              .timedOut = output->timedOut};
}

}  // namespace

std::optional<DevTools::ToolAnswer> ToolRuns::ask(const DevTools::ToolQuery& query) const {
  return answerOf(shell_, {.program = std::string{query.program},
                           .arguments = {query.arguments.begin(), query.arguments.end()},
                           .timeout = query.timeout});
}

std::optional<CleanupFailure> ToolRuns::clean(const std::string& program,
                                              std::vector<std::string> arguments) const {
  return toolFailure(program, answerOf(shell_, {program, std::move(arguments), cleanupTimeout}));
}

std::optional<CleanupFailure> ToolRuns::git(std::vector<std::string> arguments) const {
  return clean(gitProgram, std::move(arguments));
}

std::optional<int> ToolRuns::uncommittedChanges(const std::string& worktree) const {
  std::vector<std::string> arguments(Cleanup::safeGitOptions.begin(), Cleanup::safeGitOptions.end());
  arguments.insert(arguments.end(), {"-C", worktree, "status", "--porcelain"});
  const auto answer = answerOf(shell_, {gitProgram, std::move(arguments), statusTimeout});
  if (!answer || answer->timedOut || answer->status != 0) return std::nullopt;
  return static_cast<int>(lines(answer->output).size());
}

std::optional<CleanupFailure> ToolRuns::emptyTrash() const {
  return trashFailure(answerOf(shell_, {trashProgram, {"trash", "--empty"}, trashTimeout}));
}

}  // namespace spacemint
