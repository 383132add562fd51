// Measures the cost of recording changes and the gain of rescans. Usage: bench_journal PATH [ROUNDS]
//
// Compares figures of a single run. Creates a few files in the tree and removes them again. The recorder runs
// in this process. The kernel's memory for watches is measured as a difference in /proc/meminfo, so other
// programs affect that figure.

#include "core/host/EventRecorder.h"
#include "core/scan/ReadAheadListing.h"
#include "core/scan/ScanPlan.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iomanip>
#include <iostream>
#include <thread>

namespace {

using namespace spacemint;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr Bytes threshold = 20'000'000;
constexpr std::size_t changedFolders = 10;
constexpr int coldRounds = 3;
constexpr int stormFiles = 100'000;

double secondsOf(const std::function<void()>& work) {
  const auto start = Clock::now();
  work();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

void dropCaches() {
  sync();
  std::ofstream("/proc/sys/vm/drop_caches") << "3";
}

double median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

void say(const std::string& what, double value, const std::string& unit) {
  std::cout << std::left << std::setw(66) << what << std::right << std::fixed << std::setprecision(4)
            << std::setw(12) << value << ' ' << unit << '\n';
}

// Processor time and context switches of the recorder's threads, that is, all threads except the calling one.
struct Usage {
  double cpuSeconds = 0;
  long wakeUps = 0;
};

Usage usage(int who) {
  rusage used{};
  getrusage(who, &used);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return {seconds(used.ru_utime) + seconds(used.ru_stime), used.ru_nvcsw + used.ru_nivcsw};
}

Usage recorderUsage() {
  const Usage all = usage(RUSAGE_SELF);
  const Usage own = usage(RUSAGE_THREAD);
  return {all.cpuSeconds - own.cpuSeconds, all.wakeUps - own.wakeUps};
}

double residentBytes() {
  std::ifstream file("/proc/self/statm");
  double total = 0;
  double resident = 0;
  file >> total >> resident;
  return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

// The kernel's unreclaimable slab memory in bytes, which includes watches.
double kernelBytes() {
  std::ifstream file("/proc/meminfo");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("SUnreclaim:")) return std::atof(line.c_str() + line.find(':') + 1) * 1'024;
  }
  return 0;
}

std::optional<DiskScanner::Result> fullScan(const std::string& root, FolderListing& listing,
                                            Bytes minNodeSize = threshold) {
  ReadAheadListing ahead{listing};
  return DiskScanner::scan({.root = root, .minNodeSize = minNodeSize, .listing = &ahead});
}

std::vector<std::string> someFolders(const std::string& root) {
  std::vector<std::string> all;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (entry.is_directory() && !entry.is_symlink()) all.push_back(entry.path());
  }
  std::ranges::sort(all);
  std::vector<std::string> some;
  for (std::size_t i = 0; i < changedFolders; ++i)
    some.push_back(all[(2 * i + 1) * all.size() / (2 * changedFolders)]);
  return some;
}

struct Bench {
  std::string root;
  int rounds = 5;
  std::string folder;
  std::unique_ptr<FolderListing> host = hostFolderListing();
  std::shared_ptr<EventRecorder> recorder = {};

  EventRecorder::Options options(bool crawlsAtOnce) const {
    return {.root = root,
            .endpointFolder = folder + "/meet",
            .stateFolder = folder + "/state",
            .crawlsAtOnce = crawlsAtOnce};
  }

  void scanThatWatches() {
    const auto crawl = recorder->beginCrawl(root);
    fullScan(root, *crawl);
    crawl->finish();
  }

  // Runs full scans with and without setting up watches, in turn. `cold` drops the kernel's caches before
  // each scan, which needs root.
  void setUp(bool cold) {
    std::vector<double> plain;
    std::vector<double> watching;
    std::vector<double> alone;
    const auto prepared = [cold](const std::function<void()>& work) {
      if (cold) dropCaches();
      return secondsOf(work);
    };
    if (!cold) fullScan(root, *host);  // fills the caches
    for (int round = 0; round < (cold ? coldRounds : rounds); ++round) {
      plain.push_back(prepared([&] { fullScan(root, *host); }));
      recorder = EventRecorder::start(options(false)).value();
      watching.push_back(prepared([&] { scanThatWatches(); }));
      recorder.reset();
      alone.push_back(prepared([&] {
        recorder = EventRecorder::start(options(true)).value();
        recorder->waitUntilRecording(std::chrono::minutes{5});
      }));
      recorder.reset();
    }
    say(cold ? "full scan, caches dropped" : "full scan", median(plain), "s");
    say("  one that sets up the watches", median(watching) / median(plain), "of it");
    say("  set-up by a crawl of the recorder's own", median(alone) / median(plain), "of it");
  }

  void memory() {
    const double before = residentBytes();
    const double kernelBefore = kernelBytes();
    recorder = EventRecorder::start(options(true)).value();
    recorder->waitUntilRecording(std::chrono::minutes{5});
    const auto status = recorder->status();
    const auto folders = static_cast<double>(status.folders);
    say("folders", folders, "");
    say("memory of the map", static_cast<double>(status.memory) / folders, "bytes a folder");
    say("memory of the process, more than before", (residentBytes() - before) / folders, "bytes a folder");
    say("memory of the kernel for watches", (kernelBytes() - kernelBefore) / folders, "bytes a folder");
  }

  void idle() {
    const Usage before = recorderUsage();
    std::this_thread::sleep_for(std::chrono::seconds{5});
    say("wake-ups in 5 idle seconds", static_cast<double>(recorderUsage().wakeUps - before.wakeUps), "");
  }

  // Folders smaller than the threshold are not in the stored scan, so a rescan must walk them when their
  // parent changed. The measured time does not include freeing the earlier scan.
  void rescan(Bytes minNodeSize) {
    const auto folders = someFolders(root);
    std::vector<double> full;
    std::vector<double> again;
    std::int64_t walked = 0;
    for (int round = 0; round < rounds; ++round) {
      Snapshot last{.minNodeSize = minNodeSize,
                    .eventID = recorder->currentEventID({.root = root}),
                    .fullScanDate = Date{}};
      full.push_back(secondsOf([&] { last.root = fullScan(root, *host, minNodeSize)->root; }));
      for (const std::string& changed : folders) {
        std::ofstream(changed + "/.bench-journal", std::ios::app) << round;
      }
      walked = 0;
      ScanPlan plan;
      std::optional<DiskScanner::Result> result;
      const auto reuse = [&](const std::string& path) {
        auto node = plan.reuse ? plan.reuse(path) : std::nullopt;
        if (!node) ++walked;
        return node;
      };
      again.push_back(secondsOf([&] {
        plan = ScanPlan::make(
            *recorder, {.root = root, .minNodeSize = minNodeSize, .now = Date{}, .earlier = std::move(last)});
        result = DiskScanner::scan({.root = root, .minNodeSize = minNodeSize, .reuse = reuse});
      }));
    }
    for (const std::string& changed : folders) unlink((changed + "/.bench-journal").c_str());
    say("full scan that keeps what has " + std::to_string(minNodeSize) + " bytes", median(full), "s");
    say("  rescan after changes in 10 folders", median(again) / median(full), "of it");
    say("  folders that it walked", static_cast<double>(walked), "");
  }

  void storm() {
    const std::string in = root + "/.bench-storm";
    mkdir(in.c_str(), 0755);
    const Usage before = recorderUsage();
    const double wall = secondsOf([&] {
      for (int i = 0; i < stormFiles; ++i) {
        close(open((in + "/" + std::to_string(i)).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644));
      }
    });
    const bool survived =
        recorder->changes({.root = root, .since = recorder->currentEventID({.root = root})}).has_value();
    const double cpu = recorderUsage().cpuSeconds - before.cpuSeconds;
    say("100,000 files created in one folder", wall, "s");
    say("  the recorder's processor time, of that", cpu / wall, survived ? "" : "(events were lost)");
    fs::remove_all(in);
  }
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << "usage: bench_journal PATH [ROUNDS]\n";
    return 2;
  }
  std::string folder = (fs::temp_directory_path() / "bench-journal-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) return EXIT_FAILURE;
  Bench bench{.root = argv[1], .rounds = argc > 2 ? std::atoi(argv[2]) : 5, .folder = folder};
  bench.setUp(false);
  if (geteuid() == 0) bench.setUp(true);
  bench.memory();
  bench.idle();
  for (const Bytes minNodeSize : {0, 100'000, 20'000'000}) bench.rescan(minNodeSize);
  bench.storm();
  bench.recorder.reset();
  fs::remove_all(folder);
}
