#include "Spacemint/command/Shell.h"
#include "core/base/Unicode.h"
#include "core/host/ChildExit.h"
#include "core/host/FileHandle.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

namespace spacemint {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t readSize = 65'536;
constexpr std::chrono::milliseconds longestPoll{200};
// About 30 years: a longer timeout could overflow the clock.
constexpr Seconds longestTimeout{1e9};

struct Pipe {
  FileHandle reading;
  FileHandle writing;
};

// Moves a descriptor above the three standard ones, which the child replaces by its own.
FileHandle aboveStandard(int number) {
  FileHandle given{number};
  if (number > STDERR_FILENO) return given;
  return FileHandle{fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)};
}

std::optional<Pipe> makePipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return std::nullopt;
  Pipe made{aboveStandard(ends[0]), aboveStandard(ends[1])};
  if (!made.reading || !made.writing) return std::nullopt;
  return made;
}

// A null-terminated array of C strings that owns the strings.
class WordList {
 public:
  explicit WordList(std::vector<std::string> words) : words_(std::move(words)) {
    for (std::string& word : words_) pointers_.push_back(word.data());
    pointers_.push_back(nullptr);
  }
  char* const* get() const { return pointers_.data(); }

 private:
  std::vector<std::string> words_;
  std::vector<char*> pointers_;
};

WordList wordsOf(const Shell::Execution& execution) {
  std::vector<std::string> words{execution.path};
  words.insert(words.end(), execution.arguments.begin(), execution.arguments.end());
  return WordList{std::move(words)};
}

WordList variablesOf(const Shell::Execution& execution) {
  std::vector<std::string> words;
  words.reserve(execution.environment.size());
  for (const auto& [name, value] : execution.environment) words.push_back(name + "=" + value);
  return WordList{std::move(words)};
}

// What posix_spawn does in the child before it starts the program.
class SpawnSetup {
 public:
  SpawnSetup() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawnattr_init(&attributes_);
  }
  ~SpawnSetup() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }
  SpawnSetup(const SpawnSetup&) = delete;
  SpawnSetup& operator=(const SpawnSetup&) = delete;

  // Connects standard input to /dev/null and the outputs to the pipes; closes all other descriptors.
  bool connect(const FileHandle& output, const FileHandle& error) {
    return posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0) == 0 &&
           posix_spawn_file_actions_adddup2(&actions_, output.get(), STDOUT_FILENO) == 0 &&
           posix_spawn_file_actions_adddup2(&actions_, error.get(), STDERR_FILENO) == 0 &&
           posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1) == 0;
  }

  // Gives the child its own process group and the default signal handling.
  bool separate() {
    sigset_t none{};
    sigset_t all{};
    sigemptyset(&none);
    sigfillset(&all);
    constexpr short flags = POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
    return posix_spawnattr_setpgroup(&attributes_, 0) == 0 &&
           posix_spawnattr_setsigmask(&attributes_, &none) == 0 &&
           posix_spawnattr_setsigdefault(&attributes_, &all) == 0 &&
           posix_spawnattr_setflags(&attributes_, flags) == 0;
  }

  std::optional<pid_t> spawn(const Shell::Execution& execution) const {
    const WordList words = wordsOf(execution);
    const WordList variables = variablesOf(execution);
    pid_t child = 0;
    const int failure =
        posix_spawn(&child, execution.path.c_str(), &actions_, &attributes_, words.get(), variables.get());
    if (failure != 0) return std::nullopt;
    return child;
  }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

// An output of the child, and the text read from it so far.
struct Stream {
  FileHandle reading;
  std::string text;
};

void readSome(Stream& stream, std::vector<char>& buffer) {
  const ssize_t count = read(stream.reading.get(), buffer.data(), buffer.size());
  if (count > 0) {
    stream.text.append(buffer.data(), static_cast<std::size_t>(count));
  } else if (count == 0 || (errno != EINTR && errno != EAGAIN)) {
    stream.reading.close();
  }
}

// Reads both outputs in parallel, because the child would block on a full pipe; false if the deadline or a
// stop ended the reading.
bool readToTheEnd(std::array<Stream, 2>& streams, Clock::time_point deadline, const Shell::MayGoOn& mayGoOn) {
  std::vector<char> buffer(readSize);
  while (streams[0].reading || streams[1].reading) {
    if (mayGoOn && !mayGoOn()) return false;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() <= 0) return false;
    // A closed handle is -1, which poll() ignores.
    std::array<pollfd, 2> watched{pollfd{streams[0].reading.get(), POLLIN, 0},
                                  pollfd{streams[1].reading.get(), POLLIN, 0}};
    const int ready =
        poll(watched.data(), watched.size(), static_cast<int>(std::min(left, longestPoll).count()));
    if (ready < 0 && errno != EINTR) return true;
    if (ready <= 0) continue;
    for (std::size_t i = 0; i < streams.size(); ++i) {
      if (watched[i].revents != 0) readSome(streams[i], buffer);
    }
  }
  return true;
}

// Asks the child's process group to end, then kills the rest of the group. The child is reaped only later, so
// its number still identifies the group.
void stop(pid_t child) {
  kill(-child, SIGTERM);
  waitForExit(child, Clock::now() + Shell::grace);
  kill(-child, SIGKILL);
}

std::int32_t reap(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

Clock::time_point deadlineAfter(Seconds timeout) {
  return Clock::now() + std::chrono::duration_cast<Clock::duration>(std::min(timeout, longestTimeout));
}

}  // namespace

std::optional<Shell::Output> Shell::execute(const Execution& execution) {
  auto output = makePipe();
  auto error = makePipe();
  SpawnSetup setup;
  if (!output || !error || !setup.connect(output->writing, error->writing) || !setup.separate()) {
    return std::nullopt;
  }
  const auto child = setup.spawn(execution);
  output->writing.close();
  error->writing.close();
  if (!child) return std::nullopt;

  const auto deadline = deadlineAfter(execution.timeout);
  std::array<Stream, 2> streams{Stream{std::move(output->reading), {}},
                                Stream{std::move(error->reading), {}}};
  bool inTime = readToTheEnd(streams, deadline, execution.mayGoOn);
  for (Stream& stream : streams) stream.reading.close();
  // A child may close its outputs and keep running: the deadline applies here too.
  inTime = inTime && waitForExit(*child, deadline);
  if (!inTime) stop(*child);
  return Output{.status = reap(*child),
                .output = withInvalidUtf8Replaced(streams[0].text),
                .error = withInvalidUtf8Replaced(streams[1].text),
                .timedOut = !inTime};
}

}  // namespace spacemint
