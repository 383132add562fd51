#include "spacemintctl/browse/BrowseCommand.h"

#include "core/base/Translation.h"
#include "core/host/UserFolders.h"
#include "core/wording/ImportText.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/Interrupt.h"
#include "spacemintctl/ScanCommand.h"
#include "spacemintctl/ScanRoot.h"
#include "spacemintctl/StoredScan.h"
#include "spacemintctl/TransferCommands.h"
#include "spacemintctl/browse/Browser.h"
#include "spacemintctl/browse/Terminal.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>

namespace spacemint::ctl {

namespace {

using Setup = std::expected<BrowserSetup, Error>;

Setup importedSetup(const std::string& file) {
  auto imported = importedFrom(file);
  if (!imported) return std::unexpected(std::move(imported).error());
  BrowserSetup setup{
      .root = imported->snapshot.rootPath(),
      .folder = imported->snapshot.rootPath(),
      .importedFrom = ImportText::title(*imported, file == "-" ? "" : file, currentTime(), userLocale()),
      .whyReadOnly = i18n("This scan was imported: nothing can be removed here.")};
  setup.scan = std::move(imported->snapshot);
  return setup;
}

// The stored scan of the folder itself, or the newest one of the history that holds the folder.
Setup folderSetup(const std::string& path) {
  auto root = scanRoot(path);
  if (!root) return std::unexpected(std::move(root).error());
  if (auto problem = scanObstacle(*root)) return std::unexpected(std::move(*problem));
  BrowserSetup setup{.root = *root, .folder = *root};
  auto own = storedScan(SnapshotStore::ofRoot(*root), "");
  if (own && own->rootPath() == *root) {
    setup.scan = std::move(*own);
    return setup;
  }
  auto wider = storedScan(SnapshotStore::standard(), "");
  const Node* folder = wider ? wider->nodeAt(*root) : nullptr;
  if (folder == nullptr || !folder->isDirectory) return setup;
  setup.root = wider->rootPath();
  setup.scan = std::move(*wider);
  return setup;
}

std::string whyReadOnly(const BrowseOptions& options) {
  if (options.readOnly) return i18n("Nothing can be removed: started with --read-only.");
  if (geteuid() == 0 && !options.allowRemoval) {
    return i18n("Nothing can be removed as root; start with --allow-removal to change that.");
  }
  return "";
}

constexpr std::array signalsOfScreen{SIGINT, SIGTERM, SIGHUP, SIGWINCH, SIGTSTP};

// Blocks the signals that end or suspend the program, but for the time of a wait, so that none comes
// unnoticed between a look at `wasInterrupted` and the wait. Threads that start now leave these signals to
// this one.
class SignalsInWait {
 public:
  SignalsInWait() {
    noteInterrupts();
    sigset_t ending{};
    for (const int signal : signalsOfScreen) sigaddset(&ending, signal);
    pthread_sigmask(SIG_BLOCK, &ending, &waiting_);
    for (const int signal : signalsOfScreen) sigdelset(&waiting_, signal);
  }

  void wait(int keys, int inbox) const {
    std::array<pollfd, 2> inputs{{{keys, POLLIN, 0}, {inbox, POLLIN, 0}}};
    ppoll(inputs.data(), inputs.size(), nullptr, &waiting_);
  }

 private:
  sigset_t waiting_{};
};

int browse(BrowserSetup setup, bool keysFromTerminal) {
  const SignalsInWait signals;
  auto terminal = Terminal::open(keysFromTerminal);
  if (!terminal) {
    complain(printable(terminal.error().message));
    return failed;
  }
  Terminal& screen = **terminal;
  Inbox inbox;
  Browser browser{std::move(setup), inbox, {.home = UserFolders::home(), .locale = userLocale()}};
  screen.draw(browser.screen(screen.size()));
  browser.start();
  while (!browser.hasEnded() && !wasInterrupted() && !screen.hasGone()) {
    screen.draw(browser.screen(screen.size()));
    signals.wait(screen.keys(), inbox.descriptor());
    // Keys and clicks first: they mean what is on the screen, not what has arrived since it was drawn.
    while (const auto key = screen.key()) {
      browser.press(*key, screen.size());
      // The next keys are for the shell.
      if (const auto folder = browser.takeShellFolder()) screen.openShell(*folder);
    }
    inbox.run();
  }
  return wasInterrupted() ? interrupted : done;
}

}  // namespace

int runBrowse(const BrowseOptions& options) {
  if (options.json) {
    complain(i18n("\"browse\" is for people; \"folders --json\" and \"scan --json\" print JSON"));
    return wrongUsage;
  }
  const bool keysFromTerminal = options.importFile == "-";
  if (!Terminal::canBeUsed(keysFromTerminal)) {
    complain(
        i18n("there is no terminal to browse in; \"folders\" and \"scan\" print text, and JSON with --json"));
    return failed;
  }
  auto setup = options.importFile.empty() ? folderSetup(options.path) : importedSetup(options.importFile);
  if (!setup) {
    complain(printable(setup.error().message));
    return failed;
  }
  if (setup->whyReadOnly.empty()) setup->whyReadOnly = whyReadOnly(options);
  return browse(std::move(*setup), keysFromTerminal);
}

bool namesFolder(const std::string& argument) {
  if (argument.empty() || argument.starts_with('-')) return false;
  std::error_code failure;
  return argument.contains('/') || std::filesystem::is_directory(argument, failure);
}

}  // namespace spacemint::ctl
