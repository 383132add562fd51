// The law of the recorder: a scan that reuses what the journal reports as unchanged, and a scan that is
// updated with measured changes, must equal a full scan, node by node, whatever happened to the disk. `./dev
// mutate` breaks the recorder in many ways and shows that these tests notice.

#include "core/host/linux/journal/JournalMessage.h"
#include "core/host/linux/journal/Recorder.h"
#include "core/scan/ScanPlan.h"
#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/RandomDisk.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <thread>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::RandomDisk;
using support::TemporaryFolder;
using namespace std::chrono_literals;

fs::path testFolder() {
  const char* wanted = std::getenv("SPACEMINT_TEST_FOLDER");
  return wanted != nullptr ? fs::path{wanted} : support::recordableFolder();
}

int numberFrom(const char* variable, int otherwise) {
  const char* text = std::getenv(variable);
  return text != nullptr ? std::atoi(text) : otherwise;
}

// Creates a file in a new subfolder of every fourth folder, again and again, so that things appear in folders
// that are just being watched or listed.
class Meddler {
 public:
  explicit Meddler(std::string root) : root_(std::move(root)) {}
  ~Meddler() {
    stopping_ = true;
    thread_.join();
  }
  Meddler(const Meddler&) = delete;
  Meddler& operator=(const Meddler&) = delete;

 private:
  void run() {
    std::error_code ignored;
    for (int count = 0; !stopping_;) {
      for (fs::recursive_directory_iterator at(root_, ignored), end; at != end && !stopping_;
           at.increment(ignored)) {
        if (!at->is_directory(ignored) || ++count % 4 != 0) continue;
        fs::create_directory(at->path() / "a", ignored);
        std::ofstream(at->path() / "a/0") << "x";
      }
    }
  }

  std::string root_;
  std::atomic<bool> stopping_ = false;
  std::thread thread_{[this] { run(); }};
};

// Adds a line for each node of a tree.
void describe(const Node& node, const std::string& path, std::set<std::string>& lines) {
  lines.insert(path + ": " + std::to_string(node.size) + " bytes in " + std::to_string(node.fileCount) +
               " files" + (node.isWorktree ? ", a worktree" : ""));
  for (const Node& child : node.children) describe(child, path + "/" + child.name, lines);
}

// What to print of two trees that are not equal.
std::vector<std::string> differencesOf(const Node& found, const Node& wanted) {
  std::set<std::string> foundLines;
  std::set<std::string> wantedLines;
  describe(found, "", foundLines);
  describe(wanted, "", wantedLines);
  std::vector<std::string> differences{"the trees differ"};
  for (const auto& line : foundLines)
    if (!wantedLines.contains(line)) differences.push_back("found " + line);
  for (const auto& line : wantedLines)
    if (!foundLines.contains(line)) differences.push_back("missed " + line);
  return differences;
}

// Among equal sizes an update keeps the order of the earlier scan, so only the set of equals is compared.
Node withNamesSorted(Node node) {
  std::ranges::sort(node.children, {}, [](const Node& child) { return std::pair{-child.size, child.name}; });
  for (Node& child : node.children) child = withNamesSorted(std::move(child));
  return node;
}

// A program that scans now and then.
struct Client {
  // Uses the recorder's sizes, or walks all that changed.
  bool updates = false;
  Snapshot last = {};
  Unread unread = {};
};

struct Tally {
  int rounds = 0;
  int steps = 0;
  int reusedFolders = 0;
  int fullScans = 0;
  std::vector<std::string> differences;
};

struct Settings {
  std::uint64_t seed = 1;
  int rounds = 100;
  // Used in turn. Few changes leave much to reuse; many changes interfere with each other.
  std::vector<int> steps = {3, 5, 100, 3, 5, 200};
  Bytes minNodeSize = 0;
  std::size_t watchLimit = 0;
  bool permissions = false;
  bool meddles = false;
  // A scan sets up the recorder while the disk changes.
  bool scanSetsUp = false;
  // All scans leave this out.
  std::vector<std::string> excludes = {};
};

class Differential {
 public:
  explicit Differential(Settings settings)
      : settings_(std::move(settings)),
        disk_(root_.path(), outside_.path(), settings_.seed) {
    if (settings_.permissions) disk_.changePermissions();
  }

  const Tally& run() {
    if (settings_.scanSetsUp) scanThatSetsUp();
    EXPECT_TRUE(recorder_->waitUntilRecording(1min));
    for (Client& client : clients_) rescan(client);
    for (int round = 0; round < settings_.rounds; ++round) {
      const int steps = settings_.steps[static_cast<std::size_t>(round) % settings_.steps.size()];
      if (round % 4 == 3) scanWhileItChanges(steps);
      // In every second round the recorder receives the events as they happen, else all of them at the end.
      const bool isHeld = round % 2 == 0;
      if (isHeld) hold_.take(Recorder::threadName);
      {
        std::optional<Meddler> meddler;
        if (settings_.meddles) meddler.emplace(root_.path());
        disk_.steps(steps);
      }
      tally_.steps += steps;
      if (isHeld) hold_.release();
      compare(round);
      if (tally_.differences.size() > 5) break;
    }
    return tally_;
  }

 private:
  std::shared_ptr<EventRecorder> startRecorder() const {
    return EventRecorder::start({.root = root_.path(),
                                 .endpointFolder = own_ / "endpoint",
                                 .stateFolder = own_ / "state",
                                 .watchLimit = settings_.watchLimit,
                                 .crawlsAtOnce = !settings_.scanSetsUp})
        .value();
  }

  DiskScanner::Result scan(DiskScanner::Reuse reuse = {}) {
    return DiskScanner::scan({.root = root_.path(),
                              .minNodeSize = settings_.minNodeSize,
                              .excludes = &excludes_,
                              .reuse = std::move(reuse),
                              .listing = host_.get()})
        .value();
  }

  void scanThatSetsUp() {
    const auto crawl = recorder_->beginCrawl(root_.path());
    std::atomic<bool> isScanned = false;
    std::thread changing([&] {
      for (int step = 0; step < 3'000 && !isScanned; ++step) disk_.steps(1);
    });
    const auto result = DiskScanner::scan({.root = root_.path(),
                                           .minNodeSize = settings_.minNodeSize,
                                           .excludes = &excludes_,
                                           .listing = crawl.get()});
    isScanned = true;
    changing.join();
    crawl->finish();
    for (Client& client : clients_) {
      client.last = {.root = result->root,
                     .minNodeSize = settings_.minNodeSize,
                     .eventID = crawl->eventID(),
                     .fullScanDate = Date{},
                     .coverage = result->coverage};
      client.last.coverage.excludes = excludes_.patterns();
    }
  }

  // As programs do it, with all that a stored scan has.
  void rescanByPlan(Client& client) {
    ScanPlan plan = ScanPlan::make(*recorder_, {.root = root_.path(),
                                                .minNodeSize = settings_.minNodeSize,
                                                .earlier = client.last,
                                                .excludes = excludes_});
    if (plan.isFull()) ++tally_.fullScans;
    auto result =
        plan.scan({.root = root_.path(), .minNodeSize = settings_.minNodeSize, .listing = host_.get()});
    client.last =
        FinishedScan{.result = std::move(*result), .plan = plan, .minNodeSize = settings_.minNodeSize}
            .snapshot();
    client.unread = client.last.coverage.unread;
  }

  void rescan(Client& client) {
    if (!excludes_.isEmpty()) return rescanByPlan(client);
    Snapshot next{.minNodeSize = settings_.minNodeSize,
                  .eventID = recorder_->currentEventID({.root = root_.path()})};
    auto result = client.updates ? updated(client.last) : walked(client.last);
    next.root = std::move(result.root);
    client.last = std::move(next);
    client.unread = std::move(result.coverage.unread);
  }

  JournalQuery since(const Snapshot& last) const {
    return {.root = root_.path(), .since = last.eventID.value_or(0), .minNodeSize = settings_.minNodeSize};
  }

  DiskScanner::Result walked(const Snapshot& last) {
    const auto changes = recorder_->changes(since(last));
    if (!changes) return scanInFull();
    auto result = scan(EarlierScan{last, *changes}.reuse());
    tally_.reusedFolders += static_cast<int>(result.reusedFolders.size());
    return result;
  }

  DiskScanner::Result updated(Snapshot last) {
    const auto answer = recorder_->measuredChanges(since(last));
    if (!answer) return scanInFull();
    auto received = JournalMessage::decodeMeasured(JournalMessage::encodeMeasured(answer));
    if (!received || *received != answer) tally_.differences.push_back("the answer was sent wrongly");
    checkReused(*answer, last);
    return ScanUpdate{.earlier = std::move(last), .changes = *answer}
        .run({.root = root_.path(), .minNodeSize = settings_.minNodeSize, .listing = host_.get()})
        .value();
  }

  DiskScanner::Result scanInFull() {
    ++tally_.fullScans;
    return scan();
  }

  // What the journal calls unchanged has the size of the earlier scan. An update would scan it otherwise.
  void checkReused(const MeasuredChanges& answer, const Snapshot& last) {
    std::vector<std::string> paths{root_.path()};
    for (std::size_t i = 1; i < answer.folders.size(); ++i) {
      const auto& folder = answer.folders[i];
      paths.push_back(paths[folder.parent] + "/" + folder.name);
      if (folder.kind != MeasuredChanges::Kind::same) continue;
      ++tally_.reusedFolders;
      const Node* node = last.nodeAt(paths[i]);
      if (node == nullptr || node->size != folder.size || node->fileCount != folder.fileCount) {
        tally_.differences.push_back("not as before: " + paths[i]);
      }
    }
  }

  // The result of such a scan fits no single moment, but the next scan must be right again.
  void scanWhileItChanges(int steps) {
    std::thread changing([this, steps] { disk_.steps(steps); });
    for (Client& client : clients_) rescan(client);
    changing.join();
  }

  void compare(int round) {
    // A disk may decide only now how many blocks a file has.
    const FileHandle folder{open(root_.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    syncfs(folder.get());
    const DiskScanner::Result full = scan();
    ++tally_.rounds;
    for (Client& client : clients_) {
      // One client scans less often, so its earlier scan is another one.
      if (&client == &clients_.back() && round % 3 != 0) continue;
      rescan(client);
      compare(client, full);
    }
  }

  void compare(Client& client, const DiskScanner::Result& full) {
    const bool hasReadAll = client.unread.folders == full.coverage.unread.folders &&
                            client.unread.entries == full.coverage.unread.entries &&
                            client.unread.hasFailures == full.coverage.unread.hasFailures;
    if (!hasReadAll) tally_.differences.push_back("other items could not be read");
    if (!excludes_.isEmpty()) compareLeftOut(client.last.coverage.leftOut, full.coverage.leftOut);
    const bool isSame = client.updates ? withNamesSorted(client.last.root) == withNamesSorted(full.root)
                                       : client.last.root == full.root;
    if (isSame) return;
    for (auto& line : differencesOf(client.last.root, full.root)) {
      tally_.differences.push_back((client.updates ? "updated: " : "walked: ") + std::move(line));
    }
    client.last.root = full.root;
  }

  void compareLeftOut(const std::vector<LeftOut>& found, const std::vector<LeftOut>& wanted) {
    // A rescan knows sizes that a first scan does not.
    const auto note = [&](const char* what, const std::vector<LeftOut>& these,
                          const std::vector<LeftOut>& those) {
      for (const LeftOut& item : these) {
        if (std::ranges::count(those, item.path, &LeftOut::path) ==
            std::ranges::count(these, item.path, &LeftOut::path))
          continue;
        tally_.differences.push_back(what + item.path);
      }
    };
    note("left out ", found, wanted);
    note("did not leave out ", wanted, found);
  }

  Settings settings_;
  Excludes excludes_ = Excludes::usable(settings_.excludes, "");
  TemporaryFolder own_;
  TemporaryFolder root_{testFolder()};
  TemporaryFolder outside_{testFolder()};
  RandomDisk disk_;
  support::ThreadHold hold_;
  std::unique_ptr<FolderListing> host_ = hostFolderListing();
  std::shared_ptr<EventRecorder> recorder_ = startRecorder();
  std::array<Client, 3> clients_{{{}, {.updates = true}, {.updates = true}}};
  Tally tally_;
};

Tally compared(const Settings& settings) {
  Differential differential{settings};
  return differential.run();
}

std::string firstOf(const Tally& tally) {
  std::string text = std::to_string(tally.differences.size()) + " differences";
  for (std::size_t i = 0; i < std::min<std::size_t>(5, tally.differences.size()); ++i) {
    text += "\n  " + tally.differences[i];
  }
  return text;
}

// With a mark on the file system, or with a watch on each folder.
class JournalDifferential : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    if (!GetParam()) {
      withoutMark.emplace();
      return;
    }
    const TemporaryFolder root{testFolder()};
    const TemporaryFolder own;
    const auto recorder =
        EventRecorder::start(
            {.root = root.path(), .endpointFolder = own / "endpoint", .stateFolder = own / "state"})
            .value();
    if (!recorder->waitUntilRecording(1min) || !recorder->status().marksFileSystem) {
      GTEST_SKIP() << "no mark to be had here";
    }
  }

  std::optional<support::WithoutMark> withoutMark;
};

INSTANTIATE_TEST_SUITE_P(Each, JournalDifferential, testing::Bool(), [](const auto& tested) {
  return std::string{tested.param ? "ByMark" : "ByWatches"};
});

TEST_P(JournalDifferential, aRescanIsTheScanThatWalksEverything) {
  Tally all;
  const int rounds = numberFrom("SPACEMINT_TEST_ROUNDS", 60);
  for (const Bytes minNodeSize : {0, 20'000, 200'000, 1'000'000}) {
    const Tally tally = compared({.seed = static_cast<std::uint64_t>(numberFrom("SPACEMINT_TEST_SEED", 1)) +
                                          std::uint64_t(minNodeSize),
                                  .rounds = rounds,
                                  .minNodeSize = minNodeSize});
    EXPECT_TRUE(tally.differences.empty()) << firstOf(tally);
    EXPECT_EQ(tally.fullScans, 3);  // only the first scan of each client is full
    // No folder but the root is ever as large as the last threshold.
    if (minNodeSize < 1'000'000) {
      EXPECT_GT(tally.reusedFolders, minNodeSize == 0 ? rounds * 5 : rounds / 8);
    }
    all.rounds += tally.rounds;
    all.steps += tally.steps;
  }
  EXPECT_GE(all.rounds, 200);
  EXPECT_GE(all.steps, 10'000);
}

TEST_P(JournalDifferential, holdsAtTheLimitOfWatches) {
  const Tally tally =
      compared({.seed = 2, .rounds = numberFrom("SPACEMINT_TEST_ROUNDS", 40), .watchLimit = 40});
  EXPECT_TRUE(tally.differences.empty()) << firstOf(tally);
  EXPECT_EQ(tally.fullScans, 3);
}

TEST_P(JournalDifferential, holdsForAUserWhomPermissionsBind) {
  if (GetParam()) GTEST_SKIP() << "permissions do not bind a user who may mark";
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::becomeNobody()) return false;
    const Tally tally =
        compared({.seed = 3, .rounds = numberFrom("SPACEMINT_TEST_ROUNDS", 60), .permissions = true});
    if (!tally.differences.empty()) std::puts(firstOf(tally).c_str());
    return tally.differences.empty() && tally.fullScans == 3;
  }));
}

TEST_P(JournalDifferential, holdsWhileThingsAppearInFoldersThatAreBeingWatched) {
  const Tally tally =
      compared({.seed = 4, .rounds = numberFrom("SPACEMINT_TEST_ROUNDS", 60), .meddles = true});
  EXPECT_TRUE(tally.differences.empty()) << firstOf(tally);
}

TEST_P(JournalDifferential, holdsFromAScanThatSetsUpWhileTheDiskChanges) {
  for (std::uint64_t seed = 10; seed < 18; ++seed) {
    const Tally tally = compared({.seed = seed, .rounds = 3, .steps = {0, 3}, .scanSetsUp = true});
    EXPECT_TRUE(tally.differences.empty()) << firstOf(tally);
    EXPECT_EQ(tally.fullScans, 0);
  }
}

TEST_P(JournalDifferential, holdsForAFolderWithManyFiles) {
  const TemporaryFolder own;
  const TemporaryFolder root{testFolder()};
  for (std::int64_t i = 0; i < manyFiles; ++i) support::writeText(root / "a/many/" + std::to_string(i), "");
  const auto recorder =
      EventRecorder::start(
          {.root = root.path(), .endpointFolder = own / "endpoint", .stateFolder = own / "state"})
          .value();
  ASSERT_TRUE(recorder->waitUntilRecording(1min));
  std::optional<Snapshot> last;
  const auto rescan = [&] {
    ScanPlan plan = ScanPlan::make(
        *recorder, {.root = root.path(), .minNodeSize = 1'000'000, .earlier = std::move(last)});
    auto result = plan.scan({.root = root.path(), .minNodeSize = 1'000'000});
    const bool updates = plan.update.has_value();
    last = FinishedScan{.result = std::move(*result), .plan = plan, .minNodeSize = 1'000'000}.snapshot();
    EXPECT_EQ(last->root, DiskScanner::scan({.root = root.path(), .minNodeSize = 1'000'000})->root);
    return updates;
  };
  EXPECT_FALSE(rescan());
  support::writeText(root / "a/new");
  EXPECT_TRUE(rescan());
  EXPECT_NE(last->nodeAt(root / "a/many"), nullptr);
  fs::remove(root / "a/many/7");
  EXPECT_TRUE(rescan());
  EXPECT_EQ(last->nodeAt(root / "a/many"), nullptr);
}

TEST_P(JournalDifferential, holdsForScansThatLeaveThingsOut) {
  for (const bool scanSetsUp : {false, true}) {
    for (const Bytes minNodeSize : {0, 20'000}) {
      const Tally tally = compared({.seed = 20,
                                    .rounds = numberFrom("SPACEMINT_TEST_ROUNDS", 40),
                                    .minNodeSize = minNodeSize,
                                    .scanSetsUp = scanSetsUp,
                                    .excludes = {"b", "3", "**/a/c", "e/", "**/c/b", "!**/d/b"}});
      EXPECT_TRUE(tally.differences.empty()) << firstOf(tally);
      EXPECT_EQ(tally.fullScans, scanSetsUp ? 0 : 3);
    }
  }
}

}  // namespace
}  // namespace spacemint
