#pragma once

#include <functional>
#include <string>
#include <vector>

namespace spacemint::bench {

/// A command that takes part, run as a process of its own with its output thrown away.
struct Contestant {
  std::string name;
  std::vector<std::string> command;
};

/// Medians of one contestant's runs.
struct Outcome {
  double wallSeconds = 0;
  double cpuSeconds = 0;
  /// Largest resident set of any run, in bytes.
  double peakMemory = 0;
};

/// Runs all contestants in turn, `rounds` times over, so that what disturbs the machine disturbs them alike.
/// `before` is called ahead of each run. Stops the program when a command fails.
std::vector<Outcome> contest(const std::vector<Contestant>& contestants, int rounds,
                             const std::function<void()>& before);

/// Prints a table of outcomes: elapsed time in terms of the first contestant's, processor time in terms of
/// that of the one at `cpuReference`.
void print(const std::string& title, const std::vector<Contestant>& contestants,
           const std::vector<Outcome>& outcomes, std::size_t cpuReference = 0);

/// True when the program is found on the search path.
bool isInstalled(const std::string& program);

}  // namespace spacemint::bench
