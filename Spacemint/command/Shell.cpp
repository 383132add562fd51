#include "Spacemint/command/Shell.h"

#include "core/base/AsciiText.h"
#include "core/host/UserFolders.h"

#include <sys/stat.h>
#include <unistd.h>

#include <mutex>
#include <string_view>
#include <system_error>
#include <thread>

namespace spacemint {

// Shared with the running programs, which may outlive the shell.
struct Shell::Search {
  explicit Search(ProgramPlaces where) : places(std::move(where)) {}
  explicit Search(std::vector<std::string> path) : folders(std::move(path)) {
    std::call_once(once, [] {});
  }

  const std::vector<std::string>& path() {
    std::call_once(once, [this] { folders = programPath(places); });
    return folders;
  }

  std::optional<std::string> which(const std::string& name);

  ProgramPlaces places;
  std::once_flag once;
  std::vector<std::string> folders;
};

namespace {

bool isExecutableFile(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0;
}

std::map<std::string, std::string> ownEnvironment() {
  std::map<std::string, std::string> variables;
  for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
    const std::string_view text = *entry;
    const std::size_t equals = text.find('=');
    if (text.starts_with("GIT_")) continue;
    if (equals != std::string_view::npos) variables.emplace(text.substr(0, equals), text.substr(equals + 1));
  }
  return variables;
}

// Some tools accept a variable in upper and in lower case. Remove other spellings, so that the tool reads
// this value.
void set(std::map<std::string, std::string>& variables, const std::string& name, const std::string& value) {
  std::erase_if(variables, [&](const auto& each) { return lowerCased(each.first) == lowerCased(name); });
  variables[name] = value;
}

std::string joined(const std::vector<std::string>& folders) {
  std::string text;
  for (const std::string& folder : folders) (text += text.empty() ? "" : ":") += folder;
  return text;
}

}  // namespace

std::optional<std::string> Shell::Search::which(const std::string& name) {
  if (name.starts_with('/')) return isExecutableFile(name) ? std::optional{name} : std::nullopt;
  for (const std::string& folder : path()) {
    std::string candidate = folder + "/" + name;
    if (isExecutableFile(candidate)) return candidate;
  }
  return std::nullopt;
}

Shell::Shell() : Shell(ProgramPlaces{.home = UserFolders::home()}) {}

Shell::Shell(ProgramPlaces places) : search_(std::make_shared<Search>(std::move(places))) {}

Shell::Shell(std::vector<std::string> searchPath)
    : search_(std::make_shared<Search>(std::move(searchPath))) {}

const std::vector<std::string>& Shell::searchPath() const {
  return search_->path();
}

std::optional<std::string> Shell::which(const std::string& name) const {
  return search_->which(name);
}

std::future<std::optional<Shell::Output>> Shell::run(Run run) const {
  // Copy the environment on the caller's thread: the caller ensures that no thread changes the environment
  // now.
  auto environment = ownEnvironment();
  std::packaged_task<std::optional<Output>()> task(
      [search = search_, run = std::move(run),
       environment = std::move(environment)]() mutable -> std::optional<Output> {
        const auto path = search->which(run.program);
        if (!path) return std::nullopt;
        environment["PATH"] = joined(search->path());
        for (const auto& [name, value] : run.environment) set(environment, name, value);
        return execute(
            {*path, std::move(run.arguments), std::move(environment), run.timeout, std::move(run.mayGoOn)});
      });
  auto output = task.get_future();
  try {
    std::thread(std::move(task)).detach();
  } catch (const std::system_error&) {
    std::promise<std::optional<Output>> none;
    none.set_value(std::nullopt);
    return none.get_future();
  }
  return output;
}

}  // namespace spacemint
