// How fast is the scanner, and how much memory does it take? bench_scan PATH SPACEMINTCTL [ROUNDS]
//
// Every contestant measures the same tree as a process of its own. "floor" is a bare loop of the system calls
// that none can do without; du, ncdu and gdu do less or more than a scan and stand here as what people know.
// As root each is also run with the kernel's caches dropped before every run.

#include "bench/Contest.h"
#include "bench/FloorWalk.h"
#include "core/scan/DiskScanner.h"
#include "core/scan/ReadAheadListing.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iostream>

namespace {

using namespace spacemint;
using namespace spacemint::bench;

constexpr Bytes threshold = 20'000'000;

int runAlone(const std::string& contestant, const std::string& root) {
  if (contestant == "floor") return floorWalk(root).files > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
  const auto host = hostFolderListing();
  ReadAheadListing ahead{*host};
  FolderListing* listing = contestant == "one" ? host.get() : &ahead;
  const auto result = DiskScanner::scan({.root = root, .minNodeSize = threshold, .listing = listing});
  return result ? EXIT_SUCCESS : EXIT_FAILURE;
}

std::vector<Contestant> contestantsFor(const std::string& self, const std::string& root,
                                       const std::string& ctl) {
  std::vector<Contestant> contestants{
      {"du -s", {"du", "-s", root}},
      {"floor", {self, "--alone", "floor", root}},
      {"scan, one thread", {self, "--alone", "one", root}},
      {"scan, read-ahead", {self, "--alone", "ahead", root}},
      {"spacemintctl scan", {ctl, "scan", "--no-save", root}},
  };
  if (isInstalled("ncdu")) contestants.push_back({"ncdu", {"ncdu", "-0", "-x", "-o", "/dev/null", root}});
  if (isInstalled("gdu")) contestants.push_back({"gdu", {"gdu", "-n", "-p", "-x", root}});
  return contestants;
}

void print(const std::string& title, const std::vector<Contestant>& contestants,
           const std::vector<Outcome>& outcomes) {
  const Outcome& du = outcomes[0];
  const Outcome& floor = outcomes[1];
  std::cout << '\n' << title << '\n' << std::left << std::setw(20) << "" << std::right;
  for (const char* column : {"wall s", "of du", "CPU s", "of floor", "peak MB"})
    std::cout << std::setw(10) << column;
  std::cout << '\n' << std::fixed;
  for (std::size_t i = 0; i < contestants.size(); ++i) {
    const Outcome& outcome = outcomes[i];
    std::cout << std::left << std::setw(20) << contestants[i].name << std::right << std::setprecision(3)
              << std::setw(10) << outcome.wallSeconds << std::setprecision(2) << std::setw(10)
              << outcome.wallSeconds / du.wallSeconds << std::setprecision(3) << std::setw(10)
              << outcome.cpuSeconds << std::setprecision(2) << std::setw(10)
              << outcome.cpuSeconds / floor.cpuSeconds << std::setprecision(1) << std::setw(10)
              << outcome.peakMemory / 1e6 << '\n';
  }
}

void dropCaches() {
  sync();
  std::ofstream("/proc/sys/vm/drop_caches") << "3\n";
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv, argv + argc);
  if (argc == 4 && arguments[1] == "--alone") return runAlone(arguments[2], arguments[3]);
  if (argc < 3) {
    std::cerr << "usage: bench_scan PATH SPACEMINTCTL [ROUNDS]\n";
    return 2;
  }
  const std::string& root = arguments[1];
  const int rounds = argc > 3 ? std::atoi(argv[3]) : 5;
  const auto counted = floorWalk(root);  // also fills the caches
  std::cout << root << ": " << counted.files << " files, medians of " << rounds << " runs in turn\n";
  const auto contestants = contestantsFor("/proc/self/exe", root, arguments[2]);
  print("warm", contestants, contest(contestants, rounds, [] {}));
  if (geteuid() == 0)
    print("cold (caches dropped before each run)", contestants, contest(contestants, rounds, dropCaches));
}
