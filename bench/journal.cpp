// Measures the cost of recording changes and the gain of rescans. Usage: bench_journal PATH [ROUNDS]
//
// Compares figures of a single run. Creates a few files in the tree and removes them again. The recorder runs
// in this process. The kernel's memory for watches is measured as a difference in /proc/meminfo, so other
// programs affect that figure.

#include "core/history/SnapshotStore.h"
#include "core/host/EventRecorder.h"
#include "core/scan/ScanPlan.h"

#include <fcntl.h>
#include <malloc.h>
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
  return DiskScanner::scan({.root = root, .minNodeSize = minNodeSize, .listing = &listing});
}

// Counts the folders that a scan opens.
class CountingListing final : public FolderListing {
 public:
  CountingListing(FolderListing& inner, std::int64_t& count) : inner_(inner), count_(count) {}

  std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string& root) override {
    auto folder = inner_.open(root);
    if (!folder) return folder;
    return counted(std::move(*folder), count_);
  }
  std::vector<ListedPlace> places() const override { return inner_.places(); }
  std::vector<LeftOut> leftOut() const override { return inner_.leftOut(); }

 private:
  class Folder final : public OpenFolder {
   public:
    Folder(std::unique_ptr<OpenFolder> inner, std::int64_t& count)
        : inner_(std::move(inner)),
          count_(count) {}
    std::uint64_t device() const override { return inner_->device(); }
    Facts facts() const override { return inner_->facts(); }
    Batch nextBatch(ListingBuffer& buffer) override { return inner_->nextBatch(buffer); }
    std::expected<std::unique_ptr<OpenFolder>, int> openSubfolder(const std::string& name) override {
      auto folder = inner_->openSubfolder(name);
      if (!folder) return folder;
      return counted(std::move(*folder), count_);
    }

   private:
    std::unique_ptr<OpenFolder> inner_;
    std::int64_t& count_;
  };

  static std::unique_ptr<OpenFolder> counted(std::unique_ptr<OpenFolder> folder, std::int64_t& count) {
    ++count;
    return std::make_unique<Folder>(std::move(folder), count);
  }

  FolderListing& inner_;
  std::int64_t& count_;
};

// Answers as a recorder of an earlier version, which keeps no sizes.
class WithoutSizes final : public EventJournal {
 public:
  explicit WithoutSizes(EventJournal& inner) : inner_(inner) {}
  std::uint64_t currentEventID(const JournalQuery& query) override { return inner_.currentEventID(query); }
  std::expected<FolderChanges, JournalError> changes(const JournalQuery& query) override {
    return inner_.changes(query);
  }

 private:
  EventJournal& inner_;
};

std::vector<std::string> someFolders(const std::string& root, std::size_t count) {
  std::vector<std::string> all;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (entry.is_directory() && !entry.is_symlink()) all.push_back(entry.path());
  }
  std::ranges::sort(all);
  std::vector<std::string> some;
  for (std::size_t i = 0; i < count; ++i) some.push_back(all[(2 * i + 1) * all.size() / (2 * count)]);
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
    malloc_trim(0);
    const double before = residentBytes();
    const double kernelBefore = kernelBytes();
    recorder = EventRecorder::start(options(true)).value();
    recorder->waitUntilRecording(std::chrono::minutes{5});
    const auto status = recorder->status();
    const auto folders = static_cast<double>(status.folders);
    say(status.marksFileSystem ? "folders, by a mark" : "folders, by watches", folders, "");
    say("memory of the map", static_cast<double>(status.memory) / folders, "bytes a folder");
    say("memory of the process, more than before", (residentBytes() - before) / folders, "bytes a folder");
    say("memory of the kernel for watches", (kernelBytes() - kernelBefore) / folders, "bytes a folder");
  }

  void idle() {
    const Usage before = recorderUsage();
    std::this_thread::sleep_for(std::chrono::seconds{5});
    say("wake-ups in 5 idle seconds", static_cast<double>(recorderUsage().wakeUps - before.wakeUps), "");
  }

  // Compares a full scan with rescans, each up to the answer. `sizes` has the recorder list what changed;
  // otherwise the rescan walks it. Then the time of storing the scan and of pruning, which come after the
  // answer.
  void rescan(Bytes minNodeSize, std::size_t count) {
    const auto folders = someFolders(root, count);
    WithoutSizes walking{*recorder};
    Snapshot last = scanned(minNodeSize);
    std::vector<double> full;
    std::vector<double> updated;
    std::vector<double> walked;
    std::vector<double> saved;
    std::int64_t opened = 0;
    for (int round = 0; round < rounds; ++round) {
      full.push_back(secondsOf([&] { fullScan(root, *host, minNodeSize); }));
      touch(folders, round);
      Snapshot forWalk = last;
      walked.push_back(secondsOf([&] { again(walking, std::move(forWalk), minNodeSize, opened); }));
      opened = 0;
      updated.push_back(secondsOf([&] { last = again(*recorder, std::move(last), minNodeSize, opened); }));
      saved.push_back(secondsOf([&] { save(last); }));
    }
    for (const std::string& changed : folders) unlink((changed + "/.bench-journal").c_str());
    say("full scan that keeps what has " + std::to_string(minNodeSize) + " bytes", median(full), "s");
    const std::string after = " after changes in " + std::to_string(count) + " folders";
    say("  rescan" + after, median(updated) / median(full), "of it");
    say("    folders that the scan itself opened", static_cast<double>(opened), "");
    say("  rescan that walks" + after, median(walked) / median(full), "of it");
    say("  storing the scan", median(saved) / median(full), "of it");
  }

  Snapshot scanned(Bytes minNodeSize) {
    std::int64_t opened = 0;
    return again(*recorder, std::nullopt, minNodeSize, opened);
  }

  static void touch(const std::vector<std::string>& folders, int round) {
    for (const std::string& folder : folders) {
      std::ofstream(folder + "/.bench-journal", std::ios::app) << round;
    }
  }

  Snapshot again(EventJournal& journal, std::optional<Snapshot> last, Bytes minNodeSize,
                 std::int64_t& opened) {
    CountingListing counting{*host, opened};
    auto plan = ScanPlan::make(
        journal, {.root = root, .minNodeSize = minNodeSize, .now = Date{}, .earlier = std::move(last)});
    auto result = plan.scan({.root = root, .minNodeSize = minNodeSize, .listing = &counting});
    return FinishedScan{.result = std::move(*result), .plan = plan, .minNodeSize = minNodeSize}.snapshot();
  }

  void save(const Snapshot& snapshot) const {
    const SnapshotStore store{folder + "/history"};
    if (store.save(snapshot)) store.prune({.days = 14, .now = Date{}, .timeZone = "UTC"});
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
  for (const std::size_t count : {0UZ, 10UZ, 1'000UZ}) bench.rescan(threshold, count);
  bench.rescan(0, 10);
  bench.storm();
  bench.recorder.reset();
  fs::remove_all(folder);
}
