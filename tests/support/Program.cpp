#include "support/Program.h"

#include "support/ChildProcess.h"
#include "support/Files.h"

#include <fcntl.h>
#include <pty.h>

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace spacemint::support {

namespace {

void redirect(int descriptor, const std::string& path) {
  dup2(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), descriptor);
}

int exitCodeOf(pid_t child) {
  const int status = statusOf(child);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

Program::Program(std::string executable, const std::filesystem::path& parent)
    : executable_(std::move(executable)),
      handle_(open(executable_.c_str(), O_RDONLY | O_CLOEXEC)),
      home_(parent) {}

Program::~Program() {
  close(handle_);
}

std::string Program::addFile(const std::string& name, std::size_t bytes) const {
  const std::string path = home_ / name;
  return writeText(path, readText(path) + std::string(bytes, 'x'));
}

void Program::become(const std::vector<std::string>& arguments) const {
  setenv("HOME", home_.path().c_str(), 1);
  setenv("LC_ALL", "en_US.UTF-8", 1);
  setenv("TZ", "UTC", 1);
  setenv("XDG_RUNTIME_DIR", (home_ / "run").c_str(), 1);
  for (const char* variable : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME"}) {
    unsetenv(variable);
  }
  std::vector<char*> words{const_cast<char*>(executable_.c_str())};
  for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  // By its handle, because an ordinary user may not be let into the folder where it was built.
  fexecve(handle_, words.data(), environ);
  _exit(127);
}

Outcome Program::start(const std::vector<std::string>& arguments, bool asNobody, bool interrupted) const {
  const TemporaryFolder said;
  const pid_t child = fork();
  if (child == 0) {
    redirect(STDOUT_FILENO, said / "out");
    redirect(STDERR_FILENO, said / "err");
    if (asNobody && !becomeNobody()) _exit(126);
    if (interrupted) {
      sigset_t held{};
      sigaddset(&held, SIGINT);
      sigprocmask(SIG_BLOCK, &held, nullptr);
      raise(SIGINT);
    }
    become(arguments);
  }
  const int exitCode = exitCodeOf(child);
  return {exitCode, readText(said / "out"), readText(said / "err")};
}

Program::Running Program::begin(const std::vector<std::string>& arguments) const {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe");
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    close(ends[0]);
    close(ends[1]);
    become(arguments);
  }
  close(ends[1]);
  return {child, ends[0]};
}

Program::Running::~Running() {
  if (child_ > 0) end(SIGKILL);
  close(output_);
}

std::string Program::Running::line() const {
  std::string text;
  for (char next = 0; read(output_, &next, 1) == 1 && next != '\n';) text += next;
  return text;
}

void Program::Running::hang() const {
  kill(child_, SIGSTOP);
  waitpid(child_, nullptr, WUNTRACED);
}

int Program::Running::end(int signal) {
  kill(child_, signal);
  return exitCodeOf(std::exchange(child_, -1));
}

bool Program::canHaveTerminal() {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  const bool usable = terminal >= 0 && grantpt(terminal) == 0 && unlockpt(terminal) == 0;
  close(terminal);
  return usable;
}

Outcome Program::runOnTerminal(const std::vector<std::string>& arguments, const std::string& answer,
                               const std::function<void()>& meanwhile) const {
  const TemporaryFolder said;
  int terminal = -1;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child == 0) {
    redirect(STDOUT_FILENO, said / "out");
    become(arguments);
  }
  Outcome outcome;
  char buffer[4'096];
  // Reading fails once the program has gone and its side of the terminal with it.
  for (ssize_t count = 0; (count = read(terminal, buffer, sizeof buffer)) > 0;) {
    outcome.err.append(buffer, static_cast<std::size_t>(count));
    if (!outcome.err.ends_with("[y/N] ")) continue;
    if (meanwhile) meanwhile();
    const std::string line = answer + "\n";
    if (write(terminal, line.data(), line.size()) < 0) break;
  }
  close(terminal);
  outcome.exitCode = exitCodeOf(child);
  outcome.out = readText(said / "out");
  return outcome;
}

}  // namespace spacemint::support
