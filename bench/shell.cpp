// Measures how much time Shell adds to starting a program. Usage: bench_shell [RUNS]
//
// Runs `true` in turn with posix_spawn and waitpid, with Shell::execute and with Shell::run, so that other
// load on the machine affects all of them alike.

#include "Spacemint/command/Shell.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <iostream>

namespace {

using namespace spacemint;
using Milliseconds = std::chrono::duration<double, std::milli>;

const std::string program = "/usr/bin/true";

bool bare() {
  char* words[]{const_cast<char*>(program.c_str()), nullptr};
  pid_t child = 0;
  int status = 0;
  return posix_spawn(&child, program.c_str(), nullptr, nullptr, words, environ) == 0 &&
         waitpid(child, &status, 0) == child && status == 0;
}

bool executed() {
  const auto output = Shell::execute({.path = program, .timeout = Seconds{10}});
  return output && output->status == 0;
}

template <class Action>
Milliseconds timed(Action action) {
  const auto start = std::chrono::steady_clock::now();
  if (!action()) {
    std::cerr << "bench: " << program << " failed\n";
    std::exit(EXIT_FAILURE);
  }
  return std::chrono::steady_clock::now() - start;
}

Milliseconds at(std::vector<Milliseconds>& times, double share) {
  std::ranges::sort(times);
  return times[static_cast<std::size_t>(share * static_cast<double>(times.size() - 1))];
}

void print(const char* name, std::vector<Milliseconds>& times, Milliseconds bareMedian) {
  std::cout << std::left << std::setw(16) << name << std::right << std::fixed << std::setprecision(3)
            << std::setw(10) << at(times, 0.5).count() << std::setw(10) << at(times, 0.99).count()
            << std::setw(10) << (at(times, 0.5) - bareMedian).count() << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc > 1 ? std::atoi(argv[1]) : 1'000;
  const Shell shell;
  std::vector<Milliseconds> times[3];
  for (int i = 0; i < runs; ++i) {
    times[0].push_back(timed(bare));
    times[1].push_back(timed(executed));
    times[2].push_back(timed([&] { return shell.run({program, {}, Seconds{10}}).get().has_value(); }));
  }
  const Milliseconds bareMedian = at(times[0], 0.5);
  std::cout << "ms                  median      99 %     added\n";
  print("posix_spawn", times[0], bareMedian);
  print("execute", times[1], bareMedian);
  print("run", times[2], bareMedian);
}
