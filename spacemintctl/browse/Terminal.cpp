#include "spacemintctl/browse/Terminal.h"

#include "core/base/Translation.h"

#define NCURSES_NOMACROS 1
#include <ncurses.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <term.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// The library's macros have the names of ordinary words.
#undef lines
#undef columns

namespace spacemint::ctl {

namespace {

constexpr std::array<int, 6> faults{SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGQUIT};

// What a signal handler needs to give the terminal back.
struct Before {
  int descriptor = -1;
  termios settings{};
  char leave[256] = {};
  std::size_t leaveLength = 0;
};
Before before;

bool has(const char* capability) {
  return capability != nullptr && capability != reinterpret_cast<const char*>(-1);
}

void noteLeaving(const char* text) {
  if (!has(text)) return;
  const std::size_t length = std::strlen(text);
  if (before.leaveLength + length > sizeof before.leave) return;
  std::memcpy(before.leave + before.leaveLength, text, length);
  before.leaveLength += length;
}

// Only calls that a signal handler may make. SA_RESETHAND has set back the signal, which then ends the
// process.
void giveBackAndDie(int signal) {
  tcsetattr(before.descriptor, TCSANOW, &before.settings);
  [[maybe_unused]] const auto written = write(STDOUT_FILENO, before.leave, before.leaveLength);
  raise(signal);
}

void catchFaults() {
  // A stack of its own: the fault may be that the usual one is full.
  static std::array<char, 65'536> stack;
  stack_t other{};
  other.ss_sp = stack.data();
  other.ss_size = stack.size();
  sigaltstack(&other, nullptr);
  struct sigaction action {};
  action.sa_handler = giveBackAndDie;
  action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER | SA_ONSTACK);
  for (const int fault : faults) sigaction(fault, &action, nullptr);
}

struct Look {
  Style style;
  short colour;      // of 8
  short fineColour;  // of 256
  attr_t attributes;
  // Without colours.
  attr_t plainAttributes;
};

// The colours of 256 have enough contrast on black and on white: nobody knows the colour of the background.
constexpr std::array<Look, 10> looks{{
    {Style::plain, -1, -1, A_NORMAL, A_NORMAL},
    {Style::dim, -1, 244, A_NORMAL, A_NORMAL},
    {Style::strong, -1, -1, A_BOLD, A_BOLD},
    {Style::heading, -1, -1, A_REVERSE, A_REVERSE},
    {Style::folder, COLOR_BLUE, 32, A_BOLD, A_BOLD},
    {Style::bar, COLOR_GREEN, 29, A_NORMAL, A_NORMAL},
    {Style::grew, COLOR_RED, 166, A_NORMAL, A_BOLD},
    {Style::shrank, COLOR_GREEN, 64, A_NORMAL, A_NORMAL},
    {Style::marked, COLOR_YELLOW, 136, A_BOLD, A_BOLD},
    {Style::warning, COLOR_YELLOW, 136, A_BOLD, A_BOLD},
}};

bool wantsColours() {
  const char* no = std::getenv("NO_COLOR");
  return (no == nullptr || *no == '\0') && has_colors();
}

void prepareColours() {
  start_color();
  use_default_colors();
  for (std::size_t i = 0; i < looks.size(); ++i)
    init_pair(static_cast<short>(i + 1), COLORS >= 256 ? looks[i].fineColour : looks[i].colour, -1);
}

Key keyOf(int code) {
  using Kind = Key::Kind;
  switch (code) {
    case KEY_UP:
      return {Kind::up};
    case KEY_DOWN:
      return {Kind::down};
    case KEY_LEFT:
      return {Kind::left};
    case KEY_RIGHT:
      return {Kind::right};
    case KEY_PPAGE:
      return {Kind::pageUp};
    case KEY_NPAGE:
      return {Kind::pageDown};
    case KEY_HOME:
      return {Kind::home};
    case KEY_END:
      return {Kind::end};
    case KEY_ENTER:
      return {Kind::enter};
    case KEY_BACKSPACE:
      return {Kind::backspace};
    case KEY_DC:
      return {Kind::remove};
    default:
      return {};
  }
}

Key characterKey(char32_t character) {
  using Kind = Key::Kind;
  switch (character) {
    case '\r':
    case '\n':
      return {Kind::enter};
    case 0x1b:
      return {Kind::escape};
    case 0x7f:
    case '\b':
      return {Kind::backspace};
    default:
      return {.kind = character < 0x20 ? Kind::other : Kind::character, .character = character};
  }
}

Key mouseKey() {
  MEVENT event{};
  if (getmouse(&event) != OK) return {};
  if ((event.bstate & BUTTON4_PRESSED) != 0) return {Key::Kind::wheelUp};
  if ((event.bstate & BUTTON5_PRESSED) != 0) return {Key::Kind::wheelDown};
  if ((event.bstate & BUTTON1_PRESSED) == 0 || event.y < 0 || event.x < 0) return {};
  return {.kind = Key::Kind::click,
          .row = static_cast<std::size_t>(event.y),
          .column = static_cast<std::size_t>(event.x)};
}

// Makes this process's group the one that may use the terminal, as a shell does before it reads.
void takeForeground(int terminal) {
  sigset_t background{};
  sigset_t others{};
  sigaddset(&background, SIGTTOU);
  pthread_sigmask(SIG_BLOCK, &background, &others);
  tcsetpgrp(terminal, getpgrp());
  pthread_sigmask(SIG_SETMASK, &others, nullptr);
}

}  // namespace

struct Terminal::Parts {
  std::FILE* input = nullptr;
  SCREEN* screen = nullptr;
  bool hasColours = false;

  ~Parts() {
    if (screen != nullptr) {
      endwin();
      delscreen(screen);
    }
    if (input != nullptr && input != stdin) std::fclose(input);
    for (const int fault : faults) std::signal(fault, SIG_DFL);
  }

  // A chosen line is inverted as a whole: its own colours would be those of the background.
  void set(Style style, bool isChosen) const {
    const auto index = static_cast<std::size_t>(style);
    const bool isColoured = hasColours && !isChosen;
    const attr_t attributes = hasColours ? looks[index].attributes : looks[index].plainAttributes;
    attr_set(isChosen ? attributes | A_REVERSE : attributes, static_cast<short>(isColoured ? index + 1 : 0),
             nullptr);
  }
};

Terminal::Terminal(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}
Terminal::~Terminal() = default;

bool Terminal::canBeUsed(bool keysFromTerminal) {
  return isatty(STDOUT_FILENO) == 1 && (keysFromTerminal || isatty(STDIN_FILENO) == 1);
}

std::expected<std::unique_ptr<Terminal>, Error> Terminal::open(bool keysFromTerminal) {
  auto parts = std::make_unique<Parts>();
  parts->input = keysFromTerminal ? std::fopen("/dev/tty", "re") : stdin;
  if (parts->input == nullptr) return std::unexpected(systemError("/dev/tty", errno));
  before = {.descriptor = fileno(parts->input)};
  tcgetattr(before.descriptor, &before.settings);
  parts->screen = newterm(nullptr, stdout, parts->input);
  // A terminal without cursor addressing has no screen to draw on.
  if (parts->screen == nullptr || !has(tigetstr("cup"))) {
    const char* kind = std::getenv("TERM");
    return std::unexpected(Error{.domain = "terminal",
                                 .message = i18n("the kind of this terminal is not known: TERM is \"{kind}\"",
                                                 {{"kind", kind == nullptr ? "" : kind}})});
  }
  noteLeaving("\x1b[?1006l\x1b[?1000l");  // no more mouse
  for (const char* capability : {"sgr0", "rmkx", "cnorm", "rmcup"}) noteLeaving(tigetstr(capability));
  catchFaults();
  set_escdelay(25);
  cbreak();
  noecho();
  keypad(stdscr, TRUE);
  nodelay(stdscr, TRUE);
  curs_set(0);
  mouseinterval(0);
  mousemask(BUTTON1_PRESSED | BUTTON4_PRESSED | BUTTON5_PRESSED, nullptr);
  parts->hasColours = wantsColours();
  if (parts->hasColours) prepareColours();
  return std::unique_ptr<Terminal>(new Terminal(std::move(parts)));
}

ScreenSize Terminal::size() const {
  return {.columns = static_cast<std::size_t>(COLS), .rows = static_cast<std::size_t>(LINES)};
}

void Terminal::draw(const Screen& screen) {
  erase();
  int row = 0;
  for (const Line& line : screen.lines) {
    move(row++, 0);
    for (const Span& span : line.spans) {
      parts_->set(span.style, line.isChosen);
      addstr(span.text.c_str());
    }
  }
  refresh();
}

std::optional<Key> Terminal::key() {
  wint_t character = 0;
  errno = 0;
  const int result = get_wch(&character);
  // A program in the background whose shell has ended can never read again.
  const bool isUnreadable = result == ERR && errno == EIO;
  if (result == OK) return characterKey(static_cast<char32_t>(character));
  if (result == KEY_CODE_YES) {
    if (character == KEY_MOUSE) return mouseKey();
    return keyOf(static_cast<int>(character));
  }
  pollfd input{keys(), POLLIN, 0};
  const bool isClosed = poll(&input, 1, 0) == 1 && (input.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
  if (isUnreadable || isClosed) hasGone_ = true;
  return std::nullopt;
}

void Terminal::openShell(const std::string& folder) {
  endwin();
  const char* wanted = std::getenv("SHELL");
  std::string shell = wanted == nullptr || *wanted == '\0' ? "/bin/sh" : wanted;
  const std::array<char*, 2> arguments{shell.data(), nullptr};
  posix_spawn_file_actions_t actions{};
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
  // This thread blocks the signals that end the program.
  posix_spawnattr_t attributes{};
  posix_spawnattr_init(&attributes);
  sigset_t none{};
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  pid_t child = 0;
  if (posix_spawn(&child, shell.c_str(), &actions, &attributes, arguments.data(), environ) == 0) {
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) continue;
  }
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  // A shell that was killed has not given the terminal back.
  takeForeground(keys());
  clearok(curscr, TRUE);
  refresh();
}

int Terminal::keys() const {
  return fileno(parts_->input);
}

}  // namespace spacemint::ctl
