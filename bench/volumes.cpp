// Measures the list of volumes. Usage: bench_volumes [ROUNDS]
//
// The floor reads the mount table and asks each volume for its space with one call. As root, the contest is
// repeated with hundreds of mounts in a namespace of its own, as on a computer with many containers.

#include "core/host/VolumeTable.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace spacemint;

// Reads the mount table; returns its number of lines.
std::size_t readMountTable() {
  std::ifstream file("/proc/self/mountinfo");
  std::size_t lines = 0;
  for (std::string line; std::getline(file, line);) ++lines;
  return lines;
}

double medianMilliseconds(int rounds, const std::function<void()>& work) {
  std::vector<double> times;
  for (int round = 0; round < rounds; ++round) {
    const auto start = std::chrono::steady_clock::now();
    work();
    times.push_back(
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
  }
  std::ranges::nth_element(times, times.begin() + std::ssize(times) / 2);
  return times[times.size() / 2];
}

void compare(int rounds) {
  const auto readings = readVolumes();
  const double floor = medianMilliseconds(rounds, [&] {
    readMountTable();
    for (const VolumeReading& reading : readings) {
      struct statvfs status {};
      statvfs(reading.volume.mountPoint().c_str(), &status);
    }
  });
  const double list = medianMilliseconds(rounds, [] { readVolumes(); });
  std::printf("%4zu mounts, %zu volumes: floor %.3f ms, list %.3f ms, ratio %.2f\n", readMountTable(),
              readings.size(), floor, list, list / floor);
}

bool mountMore(const std::string& folder, int count) {
  for (int i = 0; i < count; ++i) {
    const std::string place = folder + "/" + std::to_string(i);
    std::filesystem::create_directory(place);
    const bool isBind = i % 2 == 0;  // of a disk; the others are in memory
    if (mount(isBind ? "/usr" : "none", place.c_str(), "tmpfs", isBind ? MS_BIND : 0, nullptr) != 0)
      return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 200;
  compare(rounds);
  if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
    std::puts("more mounts need root");
    return EXIT_SUCCESS;
  }
  std::string folder = "/tmp/spacemint-bench-XXXXXX";
  if (mkdtemp(folder.data()) == nullptr || mount("none", folder.c_str(), "tmpfs", 0, nullptr) != 0)
    return EXIT_FAILURE;
  const bool mounted = mountMore(folder, 300);
  if (mounted) compare(rounds);
  umount2(folder.c_str(), MNT_DETACH);
  rmdir(folder.c_str());
  return mounted ? EXIT_SUCCESS : EXIT_FAILURE;
}
