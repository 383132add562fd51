#include "spacemintctl/TopCommand.h"

#include "core/base/Translation.h"
#include "core/host/EventRecorder.h"
#include "core/host/UserFolders.h"
#include "core/scan/GrowthReader.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/Interrupt.h"
#include "spacemintctl/ScanRoot.h"
#include "spacemintctl/TopText.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <utility>

namespace spacemint::ctl {

namespace {

using SteadyClock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto refreshTime = 2s;
constexpr auto setUpCheck = 200ms;

// The terminal's own page, with keys that arrive at once. The destructor restores the terminal.
class LiveScreen {
 public:
  LiveScreen() {
    tcgetattr(STDIN_FILENO, &before_);
    termios keys = before_;
    keys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    tcsetattr(STDIN_FILENO, TCSANOW, &keys);
    // The alternate page, without cursor and without wrapped lines.
    print("\x1b[?1049h\x1b[?25l\x1b[?7l");
  }
  ~LiveScreen() {
    print("\x1b[?7h\x1b[?25h\x1b[?1049l");
    tcsetattr(STDIN_FILENO, TCSANOW, &before_);
  }
  LiveScreen(const LiveScreen&) = delete;
  LiveScreen& operator=(const LiveScreen&) = delete;

  static bool canBeUsed() { return isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1; }

  // Draws over the old page, so that nothing flickers.
  static bool draw(const std::string& page) {
    std::string text = "\x1b[H";
    for (const char each : page) text += each == '\n' ? "\x1b[K\r\n" : std::string(1, each);
    return print(text + "\x1b[J");
  }

 private:
  termios before_{};
};

// The journal of a running recorder, or a recorder of this process.
std::expected<std::shared_ptr<EventJournal>, Error> journalFor(const std::string& root) {
  std::shared_ptr<EventJournal> others = hostEventJournal();
  if (others->currentEventID({.root = root, .timeout = 2s}) != 0) return others;
  auto own = EventRecorder::start({.root = root});
  if (own) return *own;
  if (own.error().isSystem(EBUSY)) return others;
  return std::unexpected(std::move(own).error());
}

class Top {
 public:
  Top(EventJournal& journal, std::string root, bool json)
      : root_(std::move(root)),
        json_(json),
        reader_({.journal = journal, .root = root_, .freeBytes = [this] { return freeBytesAt(root_); }}) {}

  int run() {
    if (!json_ && LiveScreen::canBeUsed()) screen_.emplace();
    if (!json_ && !screen_)
      print(i18n("Watching what grows below {path}", {{"path", printable(root_)}}) + '\n');
    auto next = SteadyClock::now();
    while (!wasInterrupted() && !hasEnded_) {
      if (SteadyClock::now() >= next) {
        const bool isReady = refresh();
        if (hasEnded_ || !show()) break;
        next = SteadyClock::now() + (isReady ? std::chrono::milliseconds{refreshTime} : setUpCheck);
      }
      waitForKey(next);
    }
    screen_.reset();
    if (problem_) sayWhy(*problem_);
    return problem_ ? failed : done;
  }

 private:
  // That the folder is gone explains more than what the recorder says of it.
  void sayWhy(JournalError problem) const {
    std::error_code failure;
    const bool isThere = !std::filesystem::canonical(root_, failure).empty();
    complain(isThere ? printable(root_) + ": " + i18n(std::string{textOf(problem)}.c_str())
                     : printable(systemError(root_, failure.value()).message));
  }

  // False while the recorder sets itself up.
  bool refresh() {
    date_ = currentTime();
    const auto looked = reader_.refresh(SteadyClock::now(), date_);
    isSettingUp_ =
        !looked &&
        (looked.error() == JournalError::settingUp || looked.error() == JournalError::notRecording ||
         looked.error() == JournalError::eventsLost || looked.error() == JournalError::timedOut);
    if (!looked && !isSettingUp_) {
      problem_ = looked.error();
      hasEnded_ = true;
    }
    return looked.has_value();
  }

  bool show() const {
    const TopView view{.watch = reader_.watch(), .root = root_, .order = order_, .isHeld = isHeld_};
    const Wording wording{.home = UserFolders::home(), .locale = userLocale()};
    if (screen_ && isSettingUp_)
      return LiveScreen::draw(i18n("Looking at the folders below {path}…", {{"path", printable(root_)}}) +
                              "\n");
    if (isSettingUp_ || (isHeld_ && screen_ && !isStale_)) return true;
    if (screen_)
      return LiveScreen::draw(topPage(view, wording) + "\n" + i18n("q quit   s sort   space hold") + "\n");
    if (json_) return print(topJson(view, date_));
    const std::string lines = topLines(view, date_, wording);
    return lines.empty() || print(lines);
  }

  void waitForKey(SteadyClock::time_point until) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - SteadyClock::now());
    pollfd keys{screen_ ? STDIN_FILENO : -1, POLLIN, 0};
    if (::poll(&keys, 1, static_cast<int>(std::max(left.count(), std::chrono::milliseconds::rep{0}))) < 1)
      return;
    char key = 0;
    if (read(STDIN_FILENO, &key, 1) != 1 || key == 'q') {
      hasEnded_ = true;
      return;
    }
    if (key == 's') order_ = static_cast<TopOrder>((std::to_underlying(order_) + 1) % 3);
    if (key == ' ') isHeld_ = !isHeld_;
    isStale_ = true;
    show();
    isStale_ = false;
  }

  std::string root_;
  bool json_;
  GrowthReader reader_;
  std::optional<LiveScreen> screen_;
  Date date_;
  TopOrder order_ = TopOrder::minute;
  bool isSettingUp_ = true;
  bool isHeld_ = false;
  // A held page is drawn anew after a key.
  bool isStale_ = false;
  bool hasEnded_ = false;
  std::optional<JournalError> problem_;
};

}  // namespace

int runTop(const TopOptions& options) {
  const auto root = scanRoot(options.path);
  if (!root) {
    complain(printable(root.error().message));
    return failed;
  }
  noteInterrupts();
  const auto journal = journalFor(*root);
  if (!journal) {
    complain(printable(journal.error().message));
    return failed;
  }
  return Top{**journal, *root, options.json}.run();
}

}  // namespace spacemint::ctl
