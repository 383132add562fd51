// Measures the scanner's time and memory. Usage: bench_scan PATH SPACEMINTCTL [ROUNDS]
//
// Every contestant runs in its own process and measures the same tree. "floor" is a loop of only the system
// calls that every scanner needs. du, ncdu and gdu are well-known tools for comparison; they do less or more
// than a scan. As root, the contest is repeated with the kernel's caches dropped before every run.

#include "bench/Contest.h"
#include "bench/FloorWalk.h"
#include "core/scan/DiskScanner.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>

namespace {

using namespace spacemint;
using namespace spacemint::bench;

constexpr Bytes threshold = 20'000'000;
constexpr std::size_t floorIndex = 1;

struct Manner {
  std::string_view name;
  ScanManner manner;
};
constexpr Manner manners[]{
    {"quiet", ScanManner::quiet}, {"waiting", ScanManner::waiting}, {"foreground", ScanManner::foreground}};

// Fifty patterns as people write them, of which none fits a generated tree: both scans count the same files.
Excludes fiftyPatterns() {
  std::vector<std::string> patterns{".cache",     "*.iso",        "*.qcow2", "__pycache__/",
                                    "/mnt/*/old", "**/.venv/lib", "Trash-*", "[Tt]humbs",
                                    "core.[0-9]", "~*",           "*.pyc",   "/srv/**/raw"};
  for (int i = 0; patterns.size() < 50; ++i) patterns.push_back("project-" + std::to_string(i) + "/");
  return Excludes::compile(patterns, "/home/ann").value();
}

int runAlone(const std::string& contestant, const std::string& root) {
  if (contestant == "floor") return floorWalk(root).files > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
  const bool excludes = contestant == "excluding";
  const auto manner = std::ranges::find(manners, excludes ? "foreground" : contestant, &Manner::name);
  if (manner == std::end(manners)) return EXIT_FAILURE;
  const Excludes patterns = excludes ? fiftyPatterns() : Excludes{};
  return DiskScanner::scan({.root = root,
                            .minNodeSize = threshold,
                            .excludes = &patterns,
                            .manner = always(manner->manner)})
             ? EXIT_SUCCESS
             : EXIT_FAILURE;
}

std::vector<Contestant> contestantsFor(const std::string& self, const std::string& root,
                                       const std::string& ctl) {
  std::vector<Contestant> contestants{
      {"du -s", {"du", "-s", root}},
      {"floor", {self, "--alone", "floor", root}},
      {"scan, quiet", {self, "--alone", "quiet", root}},
      {"scan, waiting", {self, "--alone", "waiting", root}},
      {"scan, foreground", {self, "--alone", "foreground", root}},
      {"the same, 50 excludes", {self, "--alone", "excluding", root}},
      {"spacemintctl scan", {ctl, "scan", "--no-save", root}},
  };
  if (isInstalled("ncdu")) contestants.push_back({"ncdu", {"ncdu", "-0", "-x", "-o", "/dev/null", root}});
  if (isInstalled("gdu")) contestants.push_back({"gdu", {"gdu", "-n", "-p", "-x", root}});
  return contestants;
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
  print("warm", contestants, contest(contestants, rounds, [] {}), floorIndex);
  if (geteuid() == 0)
    print("cold (caches dropped before each run)", contestants, contest(contestants, rounds, dropCaches),
          floorIndex);
}
