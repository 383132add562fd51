#include "bench/Contest.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <sstream>

namespace spacemint::bench {

namespace {

double seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

Outcome run(const Contestant& contestant) {
  std::vector<char*> arguments;
  for (const std::string& word : contestant.command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions{};
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);

  const auto start = std::chrono::steady_clock::now();
  pid_t child = 0;
  int status = 0;
  rusage usage{};
  const bool done = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ) == 0 &&
                    wait4(child, &status, 0, &usage) == child && WIFEXITED(status) &&
                    WEXITSTATUS(status) == 0;
  const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
  posix_spawn_file_actions_destroy(&actions);
  if (!done) {
    std::cerr << "bench: " << contestant.name << " failed\n";
    std::exit(EXIT_FAILURE);
  }
  return {wall.count(), seconds(usage.ru_utime) + seconds(usage.ru_stime),
          static_cast<double>(usage.ru_maxrss) * 1'024};
}

double median(std::vector<Outcome> outcomes, double Outcome::*figure) {
  std::ranges::sort(outcomes, {}, figure);
  return outcomes[outcomes.size() / 2].*figure;
}

std::string ofText(const Contestant& reference) {
  return "of " + reference.name.substr(0, reference.name.find(' '));
}

}  // namespace

std::vector<Outcome> contest(const std::vector<Contestant>& contestants, int rounds,
                             const std::function<void()>& before) {
  std::vector<std::vector<Outcome>> outcomes(contestants.size());
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < contestants.size(); ++i) {
      before();
      outcomes[i].push_back(run(contestants[i]));
    }
  }
  std::vector<Outcome> medians;
  for (const auto& runs : outcomes) {
    medians.push_back({median(runs, &Outcome::wallSeconds), median(runs, &Outcome::cpuSeconds),
                       std::ranges::max(runs, {}, &Outcome::peakMemory).peakMemory});
  }
  return medians;
}

void print(const std::string& title, const std::vector<Contestant>& contestants,
           const std::vector<Outcome>& outcomes, std::size_t cpuReference) {
  std::cout << '\n' << title << '\n' << std::left << std::setw(20) << "" << std::right;
  const std::string columns[]{"wall s", ofText(contestants[0]), "CPU s", ofText(contestants[cpuReference]),
                              "peak MB"};
  for (const std::string& column : columns) std::cout << std::setw(10) << column;
  std::cout << '\n' << std::fixed;
  for (std::size_t i = 0; i < contestants.size(); ++i) {
    const Outcome& outcome = outcomes[i];
    std::cout << std::left << std::setw(20) << contestants[i].name << std::right << std::setprecision(3)
              << std::setw(10) << outcome.wallSeconds << std::setprecision(2) << std::setw(10)
              << outcome.wallSeconds / outcomes[0].wallSeconds << std::setprecision(3) << std::setw(10)
              << outcome.cpuSeconds << std::setprecision(2) << std::setw(10)
              << outcome.cpuSeconds / outcomes[cpuReference].cpuSeconds << std::setprecision(1)
              << std::setw(10) << outcome.peakMemory / 1e6 << '\n';
  }
  std::cout << std::flush;
}

bool isInstalled(const std::string& program) {
  const char* path = std::getenv("PATH");
  std::istringstream folders{path != nullptr ? path : ""};
  for (std::string folder; std::getline(folders, folder, ':');) {
    if (access((folder + "/" + program).c_str(), X_OK) == 0) return true;
  }
  return false;
}

}  // namespace spacemint::bench
