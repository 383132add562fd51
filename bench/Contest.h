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

/// True when the program is found on the search path.
bool isInstalled(const std::string& program);

}  // namespace spacemint::bench
