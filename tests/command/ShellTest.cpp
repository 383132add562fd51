// The runner with real programs, most of them small scripts that misbehave.

#include "Spacemint/command/Shell.h"

#include "Spacemint/command/ProgramPath.h"
#include "core/host/ChildExit.h"
#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/prctl.h>

#include <fstream>
#include <iostream>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::openHandles;
using support::TemporaryFolder;
using testing::HasSubstr;
using Clock = std::chrono::steady_clock;
using Output = Shell::Output;

constexpr Seconds long_{60};
constexpr Seconds brief{0.2};

std::optional<Output> script(const std::string& text, Seconds timeout = long_) {
  return Shell::execute({.path = "/bin/sh",
                         .arguments = {"-c", text},
                         .environment = {{"PATH", "/usr/bin:/bin"}},
                         .timeout = timeout});
}

bool hasChildren() {
  return waitid(P_ALL, 0, nullptr, WEXITED | WNOHANG | WNOWAIT) == 0 || errno != ECHILD;
}

// A program of a few lines in a folder of its own.
std::string program(const std::string& path, const std::string& text) {
  support::writeText(path, text);
  fs::permissions(path, fs::perms::owner_all);
  return path;
}

TEST(ShellExecute, tellsHowTheProgramEndedAndWhatItWrote) {
  const std::pair<std::string, Output> cases[]{
      {"exit 3", {.status = 3}},
      {"echo out; echo err >&2", {.output = "out\n", .error = "err\n"}},
      {"kill -KILL $$", {.status = 137}},
      {"kill -TERM $$", {.status = 143}},
      // It is at the end of its input at once.
      {"cat; echo read", {.output = "read\n"}},
      {"printf 'a\\377\\376b\\303'; printf '\\300' >&2",
       {.output = "a\ufffd\ufffdb\ufffd", .error = "\ufffd"}},
      {"printf 'a\\000b'", {.output = std::string("a\0b", 3)}},
  };
  for (const auto& [text, output] : cases) EXPECT_EQ(script(text), output) << text;
}

TEST(ShellExecute, givesTheProgramItsArgumentsAndEnvironmentAndNothingElse) {
  const auto output = Shell::execute({.path = "/usr/bin/env",
                                      .arguments = {"sh", "-c", "echo \"$0,$1,$2\"; env", "a b", "", "$c\n"},
                                      .environment = {{"PATH", "/usr/bin:/bin"}, {"KEY", "x=y"}},
                                      .timeout = long_});
  ASSERT_TRUE(output);
  EXPECT_THAT(output->output, HasSubstr("a b,,$c\n"));
  EXPECT_THAT(output->output, HasSubstr("KEY=x=y\n"));
  EXPECT_THAT(output->output, testing::Not(HasSubstr("HOME=")));
}

TEST(ShellExecute, handsDownNoDescriptorAndNoSignalSetting) {
  const int inheritable = open("/dev/null", O_RDONLY);
  ASSERT_GE(dup2(inheritable, 57), 0);
  EXPECT_TRUE(support::succeedsInChild([] {
    dup2(open("/etc/passwd", O_RDONLY), STDIN_FILENO);
    std::signal(SIGTERM, SIG_IGN);
    sigset_t all{};
    sigfillset(&all);
    sigprocmask(SIG_BLOCK, &all, nullptr);
    // The fourth descriptor is that of `ls` itself.
    const auto output = script(
        "ls /proc/self/fd | tr '\\n' ' '; grep SigBlk /proc/self/status | tr -d '\\t0\\n';"
        "test $(cut -d' ' -f5 /proc/$$/stat) = $$ && readlink /proc/self/fd/0");
    const std::string expected = "0 1 2 3 SigBlk:/dev/null\n";
    if (output && output->output != expected) std::cerr << output->output << output->error;
    return output && output->output == expected && script("kill -TERM $$") == Output{.status = 143};
  }));
  close(57);
  close(inheritable);
}

TEST(ShellExecute, worksWhereTheProcessItselfHasNoStandardDescriptors) {
  EXPECT_TRUE(support::succeedsInChild([] {
    for (const int standard : {0, 1, 2}) close(standard);
    return script("cat; echo out; echo err >&2") == Output{.output = "out\n", .error = "err\n"};
  }));
}

TEST(ShellExecute, takesAHundredMegabytesFromBothOutputsAtOnce) {
  const auto output = script("head -c 100000000 /dev/zero >&2 & head -c 100000000 /dev/zero; wait");
  ASSERT_TRUE(output);
  EXPECT_EQ(output->status, 0);
  EXPECT_EQ(output->output.size(), 100'000'000U);
  EXPECT_EQ(output->error.size(), 100'000'000U);
}

TEST(ShellExecute, answersNothingForWhatCannotBeStarted) {
  const TemporaryFolder folder;
  const auto before = openHandles();
  std::ofstream(folder / "not executable") << "#!/bin/sh\n";
  program(folder / "no interpreter", "echo hello\n");
  program(folder / "missing interpreter", "#!/nowhere/sh\n");
  for (const std::string& path : {folder / "missing", folder / "not executable", folder / "no interpreter",
                                  folder / "missing interpreter", folder.path(), std::string{}}) {
    EXPECT_EQ(Shell::execute({.path = path, .timeout = long_}), std::nullopt) << path;
  }
  EXPECT_EQ(openHandles(), before);
  EXPECT_FALSE(hasChildren());
}

// Each runs past its deadline in another way. They write down who they are, so that it can be seen that
// nobody of them is left.
TEST(ShellExecute, stopsTheWholeGroupWhenItRunsTooLong) {
  struct Case {
    std::string text;
    bool needsForce = false;
    int status = 143;
    std::string output = {};
  };
  const TemporaryFolder folder;
  const Case cases[]{
      {.text = "echo said; sleep 100", .output = "said\n"},
      // It ignores the request to end, and so do those it starts.
      {.text = "trap '' TERM; echo said; sleep 100 & sleep 100; sleep 100",
       .needsForce = true,
       .status = 137,
       .output = "said\n"},
      // It ends in time, but a grandchild holds the outputs.
      {.text = "sleep 100 & exit 7", .status = 7},
      {.text = "(trap '' TERM; sleep 100; sleep 100) & exit 7", .status = 7},
      // It closes its outputs and lives on.
      {.text = "exec >&- 2>&-; sleep 100"},
      {.text = "trap '' TERM; exec >&- 2>&-; sleep 100; sleep 100", .needsForce = true, .status = 137},
      {.text = "cat /dev/zero >/dev/null"},
      // It takes its time to end in order, which it is given.
      {.text = "trap 'sleep 0.3; exit 9' TERM; sleep 100 & wait", .status = 9},
  };
  ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
  const auto before = openHandles();
  for (const Case& slow : cases) {
    const auto start = Clock::now();
    const auto output = script("echo $$ >'" + (folder / "group") + "'; " + slow.text, brief);
    const Seconds took = Clock::now() - start;
    ASSERT_TRUE(output) << slow.text;
    EXPECT_EQ(*output, (Output{.status = slow.status, .output = slow.output, .timedOut = true})) << slow.text;
    EXPECT_GE(took, brief);
    EXPECT_LT(took, brief + Seconds{1.1} + (slow.needsForce ? Seconds{Shell::grace} : Seconds{0}))
        << slow.text;
    pid_t group = 0;
    std::ifstream(folder / "group") >> group;
    ASSERT_GT(group, 1);
    // Those that the group left behind became children of ours, and are dead.
    while (waitpid(-group, nullptr, 0) > 0) {
    }
    EXPECT_LT(Clock::now() - start, took + Seconds{10}) << slow.text;
  }
  EXPECT_EQ(openHandles(), before);
  EXPECT_FALSE(hasChildren());
}

TEST(ShellExecute, looksAtTheClockWhileAChildWritesOn) {
  const auto start = Clock::now();
  const auto output = script("while :; do echo x; done", brief);
  EXPECT_LT(Clock::now() - start, Seconds{1.3});
  EXPECT_TRUE(output && output->timedOut);
}

class ShellTest : public testing::Test {
 protected:
  TemporaryFolder home;
  const Shell shell{ProgramPlaces{.home = home.path(), .systemRoot = home / "root"}};
};

TEST_F(ShellTest, findsTheFirstThatCanBeExecuted) {
  std::ofstream((fs::create_directories(home / ".docker/bin"), home / ".docker/bin/spacemint-tool"));
  fs::create_directories(home / ".local/bin/spacemint-tool");
  const std::string tool = program(home / ".cargo/bin/spacemint-tool", "#!/bin/sh\n");
  program(home / "go/bin/spacemint-tool", "#!/bin/sh\n");
  EXPECT_EQ(shell.which("spacemint-tool"), tool);
  EXPECT_EQ(shell.which(tool), tool);
  EXPECT_EQ(shell.which(home / ".docker/bin/spacemint-tool"), std::nullopt);
  EXPECT_EQ(shell.which(home / ".local/bin"), std::nullopt);
  for (const char* name : {"spacemint-missing", "", ".", "/"}) EXPECT_EQ(shell.which(name), std::nullopt);
}

TEST_F(ShellTest, worksOutItsPathOnce) {
  const auto before = shell.searchPath();
  fs::create_directories(home / ".nvm/versions/node/v20.0.0");
  EXPECT_EQ(shell.searchPath(), before);
}

TEST_F(ShellTest, runsWithItsSearchPathInTheEnvironmentOfTheProcess) {
  setenv("SPACEMINT_TEST_VARIABLE", "kept", 1);
  program(home / ".local/bin/spacemint-tool", "#!/bin/sh\necho $1 $SPACEMINT_TEST_VARIABLE $PATH\n");
  const auto output = shell.run({"spacemint-tool", {"word"}, long_}).get();
  std::string path;
  for (const std::string& folder : shell.searchPath()) path += ":" + folder;
  ASSERT_TRUE(output);
  EXPECT_EQ(output->output, "word kept " + path.substr(1) + "\n");
  EXPECT_EQ(shell.run({"spacemint-missing", {}, long_}).get(), std::nullopt);
}

TEST_F(ShellTest, runsTwoHundredAtOnceAndLeaksNothing) {
  const auto before = openHandles();
  std::vector<std::future<std::optional<Output>>> runs;
  for (int i = 0; i < 200; ++i) {
    const std::string number = std::to_string(i);
    runs.push_back(
        shell.run({"sh",
                   {"-c", "echo " + number + "; echo e" + number + " >&2; exit " + std::to_string(i % 7)},
                   long_}));
  }
  for (int i = 0; i < 200; ++i) {
    const std::string number = std::to_string(i);
    EXPECT_EQ(runs[static_cast<std::size_t>(i)].get(),
              (Output{.status = i % 7, .output = number + "\n", .error = "e" + number + "\n"}));
  }
  EXPECT_EQ(openHandles(), before);
  EXPECT_FALSE(hasChildren());
}

TEST(ChildExit, isSeenWithoutReapingTheChild) {
  const pid_t child = support::startChild([] { return false; });
  EXPECT_TRUE(waitForExit(child, Clock::now() + std::chrono::seconds{10}));
  EXPECT_EQ(WEXITSTATUS(support::statusOf(child)), 1);
  EXPECT_TRUE(waitForExit(child, Clock::now()));
  const pid_t sleeper = support::startChild([] { return pause() == 0; });
  EXPECT_FALSE(waitForExit(sleeper, Clock::now() + std::chrono::milliseconds{20}));
  kill(sleeper, SIGKILL);
  EXPECT_EQ(WTERMSIG(support::statusOf(sleeper)), SIGKILL);
}

TEST(ProgramPath, isTheToolFoldersThenNodeThenTheSystem) {
  const TemporaryFolder root;
  const TemporaryFolder home;
  for (const char* version : {"v9.0.0", "v18.19.0", "v20.11.1", "v20.2.1", "v20.2.01a", "system"}) {
    fs::create_directories((home / ".nvm/versions/node/") + version);
  }
  fs::create_directories(root / "etc/paths.d");
  std::ofstream(root / "etc/paths") << "/usr/bin\n\n  /opt/homebrew/bin\t\r\n/opt/extra/bin\n/opt/extra/bin";
  std::ofstream(root / "etc/paths.d/2") << "/second/bin\n";
  std::ofstream(root / "etc/paths.d/1") << "/first/bin\n/second/bin\n";
  const std::string nodes = home / ".nvm/versions/node/";
  EXPECT_THAT(
      programPath({home.path(), root.path()}),
      testing::ElementsAre(
          "/opt/homebrew/bin", "/opt/homebrew/sbin", "/usr/local/bin", home / ".orbstack/bin",
          "/Applications/Docker.app/Contents/Resources/bin", home / ".docker/bin", home / ".local/bin",
          home / ".cargo/bin", home / ".bun/bin", home / ".volta/bin", home / "Library/pnpm", home / "go/bin",
          "/usr/local/go/bin", home / ".asdf/shims", home / ".local/share/mise/shims", nodes + "v20.11.1/bin",
          nodes + "v20.2.01a/bin", nodes + "v20.2.1/bin", nodes + "v18.19.0/bin", nodes + "v9.0.0/bin",
          nodes + "system/bin", "/home/linuxbrew/.linuxbrew/bin", "/snap/bin", "/var/lib/flatpak/exports/bin",
          home / ".deno/bin", home / ".pyenv/shims", "/usr/bin", "/bin", "/usr/sbin", "/sbin",
          "/opt/extra/bin", "/first/bin", "/second/bin"));
}

}  // namespace
}  // namespace spacemint
