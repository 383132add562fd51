#include "Spacemint/tools/ToolRuns.h"

#include "core/base/AsciiText.h"
#include "core/cleanup/ToolOutcome.h"

namespace spacemint {

namespace {

std::optional<DevTools::ToolAnswer> answerOf(const Shell& shell, Shell::Run run) {
  auto output = shell.run(std::move(run)).get();
  if (!output) return std::nullopt;
  return DevTools::ToolAnswer{.status = output->status,
                              .output = std::move(output->output),
                              .error = std::move(output->error),
                              .timedOut = output->timedOut};
}

// The output of a git command in a working tree; absent if git fails.
std::optional<std::string> outputOfGit(const Shell& shell, const std::string& workingTree,
                                       const std::vector<std::string>& command) {
  std::vector<std::string> arguments = gitArguments(workingTree);
  arguments.insert(arguments.end(), command.begin(), command.end());
  const auto answer = answerOf(shell, {gitProgram, std::move(arguments), ToolRuns::statusTimeout});
  if (!answer || answer->timedOut || answer->status != 0) return std::nullopt;
  return answer->output;
}

// Git options that disable the filter programs (filter.*) in the repository's own configuration, so that git
// does not run them. Filters in the system's and the user's configuration stay enabled.
std::vector<std::string> withoutFilters(const Shell& shell, const std::string& workingTree) {
  // Prints scope and name of each filter, alternating; git fails if there are none.
  const auto output = outputOfGit(
      shell, workingTree, {"config", "--null", "--show-scope", "--name-only", "--get-regexp", "^filter\\."});
  const auto words = pieces(output ? *output : std::string_view{}, '\0');
  std::vector<std::string> options;
  for (std::size_t i = 0; i + 1 < words.size(); i += 2) {
    if (words[i] == "system" || words[i] == "global") continue;
    const bool isRequired = words[i + 1].ends_with(".required");
    options.insert(options.end(), {"-c", std::string{words[i + 1]} + (isRequired ? "=false" : "=")});
  }
  return options;
}

}  // namespace

std::optional<DevTools::ToolAnswer> ToolRuns::ask(const DevTools::ToolQuery& query) const {
  return answerOf(shell_, {.program = std::string{query.program},
                           .arguments = {query.arguments.begin(), query.arguments.end()},
                           .timeout = query.timeout});
}

std::optional<CleanupFailure> ToolRuns::clean(const ToolCommand& command,
                                              const CleanupContext::MayGoOn& mayGoOn) const {
  const auto answer =
      answerOf(shell_, {command.program, command.arguments, cleanupTimeout, command.environment, mayGoOn});
  if (mayGoOn && !mayGoOn()) return CleanupFailure::stopped();
  return toolFailure(command.program, answer);
}

std::optional<int> ToolRuns::uncommittedChanges(const std::string& workingTree) const {
  std::vector<std::string> command = withoutFilters(shell_, workingTree);
  command.insert(command.end(), {"--no-optional-locks", "status", "--porcelain"});
  const auto output = outputOfGit(shell_, workingTree, command);
  if (!output) return std::nullopt;
  return static_cast<int>(lines(*output).size());
}

void ToolRuns::serve(CleanupContext& context) const {
  context.run = [tools = *this](const ToolCommand& command, const CleanupContext::MayGoOn& mayGoOn) {
    return tools.clean(command, mayGoOn);
  };
  context.uncommittedChanges = [tools = *this](const std::string& path) {
    return tools.uncommittedChanges(path);
  };
}

}  // namespace spacemint
