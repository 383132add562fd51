#pragma once

#include "core/history/SnapshotStore.h"
#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

#include <fcntl.h>
#include <pty.h>
#include <sys/types.h>

#include <csignal>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace spacemint::support {

/// What a program said and how it ended.
struct Outcome {
  int exitCode = -1;
  std::string out = {};
  std::string err = {};
};

/// Runs programs as a person would, with home and runtime folders of their own and English wording.
class Program {
 public:
  /// The home folder is made in `parent`.
  explicit Program(std::string executable,
                   const std::filesystem::path& parent = std::filesystem::temp_directory_path())
      : executable_(std::move(executable)),
        handle_(open(executable_.c_str(), O_RDONLY | O_CLOEXEC)),
        home_(parent) {}
  ~Program() { close(handle_); }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  const TemporaryFolder& home() const { return home_; }
  /// Writes to the end of a file of the home folder; its path.
  std::string addFile(const std::string& name, std::size_t bytes) const {
    const std::string path = home_ / name;
    return writeText(path, readText(path) + std::string(bytes, 'x'));
  }
  /// The scans that it keeps.
  SnapshotStore scans() const { return {.directory = home_ / ".local/share/Spacemint/Snapshots"}; }

  Outcome run(const std::vector<std::string>& arguments) const { return start(arguments, false, false); }
  /// As a user whom permissions bind.
  Outcome runAsNobody(const std::vector<std::string>& arguments) const {
    return start(arguments, true, false);
  }
  /// With Ctrl-C already pressed when it begins.
  Outcome runInterrupted(const std::vector<std::string>& arguments) const {
    return start(arguments, false, true);
  }
  /// Whether this system lends us a terminal, which a bare chroot does not.
  static bool canHaveTerminal() {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    const bool usable = terminal >= 0 && grantpt(terminal) == 0 && unlockpt(terminal) == 0;
    close(terminal);
    return usable;
  }
  /// A program that runs until it is told to end.
  class Running {
   public:
    Running(pid_t child, int output) : child_(child), output_(output) {}
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running() {
      if (child_ > 0) end(SIGKILL);
      close(output_);
    }

    /// Waits for the next line of its standard output; empty at its end.
    std::string line() const {
      std::string text;
      for (char next = 0; read(output_, &next, 1) == 1 && next != '\n';) text += next;
      return text;
    }
    /// Stops the program as if it hung, and waits until it has stopped.
    void hang() const {
      kill(child_, SIGSTOP);
      waitpid(child_, nullptr, WUNTRACED);
    }
    /// Sends a signal, waits and tells the exit code, 128 more than the signal that killed it.
    int end(int signal) {
      kill(child_, signal);
      return exitCodeOf(std::exchange(child_, -1));
    }

   private:
    pid_t child_;
    int output_;
  };
  Running begin(const std::vector<std::string>& arguments) const {
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
  /// With standard input and error on a terminal, whose text is in `err`. `answer` is typed as soon as a
  /// question ends in "[y/N] "; `meanwhile` is called before that.
  Outcome runOnTerminal(const std::vector<std::string>& arguments, const std::string& answer = "",
                        const std::function<void()>& meanwhile = {}) const {
    const TemporaryFolder said;
    int terminal = -1;
    const winsize size{.ws_row = 24, .ws_col = 80, .ws_xpixel = 0, .ws_ypixel = 0};
    const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
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

 private:
  static void redirect(int descriptor, const std::string& path) {
    dup2(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), descriptor);
  }

  static int exitCodeOf(pid_t child) {
    const int status = statusOf(child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }

  Outcome start(const std::vector<std::string>& arguments, bool asNobody, bool interrupted) const {
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
  [[noreturn]] void become(const std::vector<std::string>& arguments) const {
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

  std::string executable_;
  int handle_;
  TemporaryFolder home_;
};

}  // namespace spacemint::support
