#pragma once

#include "support/Files.h"
#include "support/TemporaryFolder.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

namespace spacemint::support {

/// A program on a terminal that tmux draws. Its exit code appears as "exit 0" when it has ended.
class TerminalSession {
 public:
  static bool canBeUsed() { return std::system("command -v tmux >/dev/null") == 0; }

  /// `command` is a line for the shell.
  TerminalSession(const std::string& home, const std::string& command, int columns, int rows) {
    mkfifo((folder_ / "news").c_str(), 0600);
    news_ = open((folder_ / "news").c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    writeText(folder_ / "run", "stty -g >" + folder_ / "before\n(echo $BASHPID >" + folder_ / "pid; exec " +
                                   command + ")\ncode=$?\nstty -g >" +
                                   folder_ / "after\necho exit $code\nread line\n");
    tmux("-f /dev/null new-session -d -x " + std::to_string(columns) + " -y " + std::to_string(rows) +
         " 'env HOME=" + home + " XDG_RUNTIME_DIR=" + home + "/run TZ=UTC LC_ALL=C.UTF-8 bash " +
         folder_ / "run" + "' \\; pipe-pane 'cat >" + folder_ / "news'");
  }
  ~TerminalSession() {
    // Its end is not what is tested. By the hang-up of its terminal, the leak check at the end would never
    // end.
    const std::string pid = readText(folder_ / "pid");
    if (!pid.empty() && readText(folder_ / "after").empty()) kill(std::stoi(pid), SIGKILL);
    tmux("kill-server");
    close(news_);
  }
  TerminalSession(const TerminalSession&) = delete;
  TerminalSession& operator=(const TerminalSession&) = delete;

  /// Keys as tmux names them: "Down q Enter".
  void press(const std::string& keys) const { tmux("send-keys " + keys); }
  /// A click of the first button. Columns and rows count from 1.
  void click(int column, int row) const { press("-H" + mouse(0, column, row) + mouse(3, column, row)); }
  /// Down, or up if `steps` is negative.
  void turnWheel(int steps) const {
    std::string bytes = "-H";
    for (int i = std::abs(steps); i > 0; --i) bytes += mouse(steps < 0 ? 64 : 65, 2, 4);
    press(bytes);
  }
  void resize(int columns, int rows) const {
    tmux("resize-window -x " + std::to_string(columns) + " -y " + std::to_string(rows));
  }
  std::string screen() const { return tmux("capture-pane -p"); }

  /// Waits for a screen with this text, and returns it; after a minute without one, the last screen.
  std::string wait(const std::string& text) const {
    return waitUntil([&](const std::string& screen) { return screen.contains(text); });
  }
  std::string waitUntil(const std::function<bool(const std::string&)>& isRight) const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes{1};
    for (;;) {
      std::string now = screen();
      if (isRight(now) || std::chrono::steady_clock::now() > end) return now;
      pollfd news{news_, POLLIN, 0};
      poll(&news, 1, 1'000);  // a screen may change without news, as when the program ends
      std::array<char, 65'536> seen{};
      while (read(news_, seen.data(), seen.size()) > 0) continue;
    }
  }

  int process() const { return std::stoi(readText(folder_ / "pid")); }
  /// After the end: whether the terminal is as it was.
  bool isGivenBack() const {
    return readText(folder_ / "before") == readText(folder_ / "after") &&
           tmux("display -p '#{alternate_on}#{mouse_any_flag}#{cursor_flag}'") == "001\n";
  }

 private:
  static std::string mouse(int button, int column, int row) {
    std::array<char, 32> bytes{};
    std::snprintf(bytes.data(), bytes.size(), " 1b 5b 4d %02x %02x %02x", 32 + button, 32 + column, 32 + row);
    return bytes.data();
  }
  std::string tmux(const std::string& arguments) const {
    const std::string line = "tmux -u -S " + folder_ / "socket " + arguments + " 2>/dev/null";
    std::string said;
    std::FILE* output = popen(line.c_str(), "r");
    std::array<char, 4'096> part{};
    while (const std::size_t length = std::fread(part.data(), 1, part.size(), output))
      said.append(part.data(), length);
    pclose(output);
    return said;
  }

  TemporaryFolder folder_;
  int news_ = -1;
};

}  // namespace spacemint::support
