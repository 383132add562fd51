// Creates a large folder tree. Usage: gentree PATH [FOLDERS [FILES [SEED]]]
//
// The same arguments give the same names, shape and sizes. The files' blocks are allocated but not written,
// so that hundreds of thousands of files take only seconds. The tree resembles a home folder: most files are
// created together with their folder, and one file in five is added later to a random folder; most folders
// contain a few files, one in eight some dozens; most files have a few kilobytes, one in 20,000 has tens of
// megabytes.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <random>
#include <string>
#include <system_error>
#include <vector>

namespace {

using Random = std::mt19937_64;

std::uint64_t below(Random& random, std::uint64_t limit) {
  return random() % limit;
}

std::string nameFor(Random& random, std::uint64_t number) {
  static const std::vector<std::string> words{"photo", "index", "node_modules", "report", "src",    "cache",
                                              "build", "test",  "data",         "summer", "config", "utils",
                                              "a",     "lib"};
  static const std::vector<std::string> endings{"", ".js", ".jpg", ".cpp", ".txt", ".json", ".d.ts", ".o"};
  return words[below(random, words.size())] + "-" + std::to_string(number) +
         endings[below(random, endings.size())];
}

off_t sizeFor(Random& random) {
  if (below(random, 20'000) == 0) return static_cast<off_t>(10'000'000 + below(random, 60'000'000));
  if (below(random, 10) == 0) return static_cast<off_t>(below(random, 200'000));
  return static_cast<off_t>(below(random, 8'000));
}

bool makeFile(const std::string& path, off_t size) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (file < 0) return false;
  const int failure = size > 0 ? posix_fallocate(file, 0, size) : 0;
  close(file);
  errno = failure;
  return failure == 0;
}

std::string randomFolder(const std::vector<std::string>& folders, Random& random) {
  // Half of the new folders go into a recent folder, so that the tree gets some depth.
  const std::uint64_t recent = std::min<std::uint64_t>(folders.size(), 200);
  return folders[below(random, 2) == 0 ? below(random, folders.size())
                                       : folders.size() - 1 - below(random, recent)];
}

// The number of files that each folder gets when it is created.
std::vector<std::uint64_t> shares(std::uint64_t folders, std::uint64_t files, Random& random) {
  std::vector<std::uint64_t> weights;
  std::uint64_t total = 0;
  while (weights.size() < folders) {
    weights.push_back(below(random, 8) == 0 ? below(random, 60) : below(random, 12));
    total += weights.back();
  }
  for (std::uint64_t& weight : weights) weight = weight * files / std::max<std::uint64_t>(total, 1);
  return weights;
}

class Generator {
 public:
  Generator(std::string root, std::uint64_t seed) : folders_{std::move(root)}, random_(seed) {}

  // On failure returns false and sets errno.
  bool make(std::uint64_t folders, std::uint64_t files) {
    const auto share = shares(folders, files - files / 5, random_);
    for (std::uint64_t i = 0; i < folders; ++i) {
      if (i > 0) folders_.push_back(randomFolder(folders_, random_) + "/" + nameFor(random_, i));
      if (mkdir(folders_.back().c_str(), 0755) != 0) return false;
      for (std::uint64_t file = 0; file < share[i]; ++file) {
        if (!addFile(folders_.back())) return false;
      }
    }
    while (made_ < files) {
      if (!addFile(folders_[below(random_, folders_.size())])) return false;
    }
    return true;
  }

 private:
  bool addFile(const std::string& folder) {
    return makeFile(folder + "/" + nameFor(random_, made_++), sizeFor(random_));
  }

  std::vector<std::string> folders_;
  Random random_;
  std::uint64_t made_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << "usage: gentree PATH [FOLDERS [FILES [SEED]]]\n";
    return 2;
  }
  const auto number = [&](int at, std::uint64_t otherwise) {
    return argc > at ? std::strtoull(argv[at], nullptr, 10) : otherwise;
  };
  if (!Generator{argv[1], number(4, 1)}.make(number(2, 60'000), number(3, 600'000))) {
    std::cerr << "gentree: " << argv[1] << ": " << std::generic_category().message(errno) << '\n';
    return EXIT_FAILURE;
  }
}
