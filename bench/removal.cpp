// Measures the time and memory for removing folders of different sizes.
// Usage: bench_removal FOLDER GENTREE [ROUNDS]
//
// Each contestant runs in its own process and removes the same tree, which is created again before every run.

#include "core/host/Removal.h"

#include "bench/Contest.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace {

using namespace spacemint;
using namespace spacemint::bench;

int removeAlone(const std::string& path) {
  RemovalProgress progress;
  const auto removed = removeItem({.path = path}, progress);
  if (!removed) std::cerr << removed.error().path << ' ' << removed.error().error.message << '\n';
  return removed ? EXIT_SUCCESS : EXIT_FAILURE;
}

void makeTree(const std::string& gentree, const std::string& tree) {
  const std::string command = gentree + " " + tree + " 10000 100000 >/dev/null";
  if (std::system(command.c_str()) != 0) std::exit(EXIT_FAILURE);
}

void makeFlat(const std::string& tree, int files) {
  std::filesystem::create_directories(tree);
  const int folder = open(tree.c_str(), O_RDONLY | O_DIRECTORY);
  for (int i = 0; i < files; ++i) {
    close(openat(folder, ("a file with a name of some length " + std::to_string(i)).c_str(),
                 O_CREAT | O_WRONLY, 0600));
  }
  close(folder);
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv, argv + argc);
  if (argc == 3 && arguments[1] == "--alone") return removeAlone(arguments[2]);
  if (argc < 3) {
    std::cerr << "usage: bench_removal FOLDER GENTREE [ROUNDS]\n";
    return 2;
  }
  const std::string tree = arguments[1] + "/tree";
  const int rounds = argc > 3 ? std::atoi(argv[3]) : 5;
  const std::vector<Contestant> contestants{{"rm -rf", {"rm", "-rf", tree}},
                                            {"removal", {arguments[0], "--alone", tree}}};
  print("100,000 files in 10,000 folders", contestants, contest(contestants, rounds, [&] {
          makeTree(arguments[2], tree);
          sync();
        }));
  for (const int files : {100'000, 1'000'000}) {
    const auto outcomes = contest(contestants, files > 100'000 ? 1 : rounds, [&] {
      makeFlat(tree, files);
      sync();
    });
    print(std::to_string(files) + " files in one folder", contestants, outcomes);
  }
}
