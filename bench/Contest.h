#pragma once

#include <functional>
#include <string>
#include <vector>

namespace spacemint::bench {

/// A command to measure. It runs in its own process; its output is discarded.
struct Contestant {
  std::string name;
  std::vector<std::string> command;
};

/// The medians of a contestant's runs.
struct Outcome {
  double wallSeconds = 0;
  double cpuSeconds = 0;
  /// Largest resident set of any run, in bytes.
  double peakMemory = 0;
};

/// Runs all contestants in turn, `rounds` times, so that other load on the machine affects all of them alike.
/// Calls `before` before each run. Exits if a command fails.
std::vector<Outcome> contest(const std::vector<Contestant>& contestants, int rounds,
                             const std::function<void()>& before);

/// Prints a table of outcomes. Elapsed times are also shown relative to the first contestant, processor times
/// relative to the contestant at `cpuReference`.
void print(const std::string& title, const std::vector<Contestant>& contestants,
           const std::vector<Outcome>& outcomes, std::size_t cpuReference = 0);

/// True if the program is on the search path.
bool isInstalled(const std::string& program);

}  // namespace spacemint::bench
