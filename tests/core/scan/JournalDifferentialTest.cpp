// A scan that reuses what the journal says is unchanged must be the scan that walks everything, node for
// node, whatever was done to the disk. And it must not be so without each of the rules that the recorder
// lives by.

#include "core/host/linux/journal/Recorder.h"
#include "core/scan/ChangeLog.h"
#include "support/ChildProcess.h"
#include "support/OwnMounts.h"
#include "support/RandomDisk.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/vfs.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::RandomDisk;
using support::TemporaryFolder;
using namespace std::chrono_literals;

constexpr std::uint64_t firstEventID = std::uint64_t{1} << 44U;

// In memory where that is to be had: a disk settles later how many blocks a file has, which no event tells.
fs::path testFolder() {
  const char* wanted = std::getenv("SPACEMINT_TEST_FOLDER");
  if (wanted != nullptr) return wanted;
  struct statfs status {};
  constexpr decltype(status.f_type) memory = 0x01021994;
  const bool isInMemory =
      statfs("/dev/shm", &status) == 0 && status.f_type == memory && access("/dev/shm", W_OK) == 0;
  return isInMemory ? fs::path{"/dev/shm"} : fs::temp_directory_path();
}

int numberFrom(const char* variable, int otherwise) {
  const char* text = std::getenv(variable);
  return text != nullptr ? std::atoi(text) : otherwise;
}

// Keeps the recorder from looking for events while it is held, so that it finds them all at once.
class Hold {
 public:
  void take() { mutex_.lock(); }
  void release() { mutex_.unlock(); }
  void wait() { const std::lock_guard lock(mutex_); }

 private:
  std::mutex mutex_;
};

// Path by path what is not the same.
void collectDifferences(const Node& found, const Node& wanted, const std::string& path,
                        std::vector<std::string>& differences) {
  if (found == wanted) return;
  Node foundAlone = found;
  Node wantedAlone = wanted;
  foundAlone.children.clear();
  wantedAlone.children.clear();
  if (foundAlone != wantedAlone) {
    differences.push_back(path + ": " + std::to_string(found.size) + " bytes in " +
                          std::to_string(found.fileCount) + " files, not " + std::to_string(wanted.size) +
                          " in " + std::to_string(wanted.fileCount));
  }
  for (const Node& child : wanted.children) {
    const Node* twin = found.child(child.name);
    if (twin == nullptr) differences.push_back(path + "/" + child.name + ": missed");
    if (twin != nullptr) collectDifferences(*twin, child, path + "/" + child.name, differences);
  }
  for (const Node& child : found.children) {
    if (wanted.child(child.name) == nullptr) differences.push_back(path + "/" + child.name + ": not there");
  }
  if (differences.empty()) differences.push_back(path + ": another order");
}

struct Tally {
  int rounds = 0;
  int steps = 0;
  int reusedFolders = 0;
  int racingScans = 0;
  int fullScans = 0;
  std::vector<std::string> differences;
};

struct Settings {
  std::uint64_t seed = 1;
  int rounds = 100;
  // In turn: few changes leave much to reuse, many get in each other's way.
  std::vector<int> steps = {3, 5, 100, 3, 5, 200};
  Bytes minNodeSize = 0;
  std::size_t watchLimit = 0;
  bool permissions = false;
  bool stopsAtFirst = false;
  RecorderRules rules = {};
};

class Differential {
 public:
  explicit Differential(Settings settings)
      : settings_(std::move(settings)),
        disk_(root_.path(), outside_.path(), settings_.seed) {
    if (settings_.permissions) disk_.changePermissions();
  }

  const Tally& run() {
    EXPECT_TRUE(recorder_->waitUntilRecording(1min));
    rescan();
    for (int round = 0; round < settings_.rounds; ++round) {
      const int steps = settings_.steps[static_cast<std::size_t>(round) % settings_.steps.size()];
      if (round % 4 == 3) scanWhileItChanges(steps);
      // Half the time the recorder hears of it as it happens, half the time when it is over.
      const bool isHeld = round % 2 == 0;
      if (isHeld) hold_.take();
      disk_.steps(steps);
      tally_.steps += steps;
      if (isHeld) hold_.release();
      compare();
      if (settings_.stopsAtFirst && !tally_.differences.empty()) break;
    }
    return tally_;
  }

 private:
  std::unique_ptr<Recorder> startRecorder() {
    settings_.rules.beforeListening = [this] { hold_.wait(); };
    if (auto meddle = std::move(settings_.rules.betweenWatchAndList)) {
      settings_.rules.betweenWatchAndList = [this, meddle](const std::string& folder) {
        const std::lock_guard lock(meddling_);
        if (!isComparing_) meddle(folder);
      };
    }
    return Recorder::start({.root = root_.path(),
                            .firstEventID = firstEventID,
                            .watchLimit = settings_.watchLimit,
                            .rules = settings_.rules})
        .value();
  }

  DiskScanner::Result scan(DiskScanner::Reuse reuse = {}) {
    return DiskScanner::scan({.root = root_.path(),
                              .minNodeSize = settings_.minNodeSize,
                              .reuse = std::move(reuse),
                              .listing = host_.get()})
        .value();
  }

  void rescan() {
    Snapshot next{.minNodeSize = settings_.minNodeSize, .eventID = log_.currentEventID(root_.path())};
    auto changes = log_.changes({.since = last_.eventID.value_or(0), .under = root_.path(), .timeout = 1min});
    DiskScanner::Reuse reuse;
    if (changes) {
      auto plain = ChangeLog::reuse(last_, std::move(*changes));
      reuse = [this, plain](const std::string& path) {
        auto node = plain(path);
        if (node) ++tally_.reusedFolders;
        return node;
      };
    } else {
      ++tally_.fullScans;
    }
    auto result = scan(reuse);
    next.root = std::move(result.root);
    last_ = std::move(next);
  }

  // What such a scan says is of no moment in particular, and still the next one must be right.
  void scanWhileItChanges(int steps) {
    std::thread changing([this, steps] { disk_.steps(steps); });
    rescan();
    ++tally_.racingScans;
    changing.join();
  }

  void compare() {
    // Where blocks are settled later.
    const FileHandle folder{open(root_.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    syncfs(folder.get());
    // Once all is heard: nothing is to appear between the two scans.
    (void)log_.changes({.since = last_.eventID.value_or(0), .under = root_.path(), .timeout = 1min});
    setComparing(true);
    rescan();
    Node full = scan().root;
    setComparing(false);
    ++tally_.rounds;
    if (last_.root == full) return;
    collectDifferences(last_.root, full, "", tally_.differences);
    last_.root = std::move(full);
  }

  void setComparing(bool isComparing) {
    const std::lock_guard lock(meddling_);
    isComparing_ = isComparing;
  }

  Settings settings_;
  std::mutex meddling_;
  bool isComparing_ = false;
  TemporaryFolder root_{testFolder()};
  TemporaryFolder outside_{testFolder()};
  RandomDisk disk_;
  Hold hold_;
  std::unique_ptr<FolderListing> host_ = hostFolderListing();
  std::unique_ptr<Recorder> recorder_ = startRecorder();
  ChangeLog log_{*recorder_};
  Snapshot last_;
  Tally tally_;
};

// Whether the system lets a recorder mark the file system.
bool grantsMark() {
  const TemporaryFolder folder{testFolder()};
  const auto recorder = Recorder::start({.root = folder.path(), .firstEventID = firstEventID}).value();
  return recorder->waitUntilRecording(1min) && recorder->status().marksFileSystem;
}

enum class Hearing { watches, mark };

std::string nameOf(Hearing hearing) {
  return hearing == Hearing::mark ? "ByMark" : "ByWatches";
}

void PrintTo(Hearing hearing, std::ostream* out) {
  *out << nameOf(hearing);
}

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

class JournalDifferential : public testing::TestWithParam<Hearing> {
 protected:
  void SetUp() override {
    if (GetParam() == Hearing::mark && !grantsMark()) GTEST_SKIP() << "no mark to be had here";
  }
  Tally compared(Settings settings) const {
    settings.rules.marksFileSystem = GetParam() == Hearing::mark;
    return spacemint::compared(settings);
  }
};

INSTANTIATE_TEST_SUITE_P(Each, JournalDifferential, testing::Values(Hearing::watches, Hearing::mark),
                         [](const auto& tested) { return nameOf(tested.param); });

TEST_P(JournalDifferential, aRescanIsTheScanThatWalksEverything) {
  Tally all;
  const int rounds = numberFrom("SPACEMINT_TEST_ROUNDS", 80);
  for (const Bytes minNodeSize : {0, 8'192, 40'000}) {
    const Tally tally = compared({.seed = static_cast<std::uint64_t>(numberFrom("SPACEMINT_TEST_SEED", 1)) +
                                          std::uint64_t(minNodeSize),
                                  .rounds = rounds,
                                  .minNodeSize = minNodeSize});
    EXPECT_TRUE(tally.differences.empty()) << firstOf(tally);
    EXPECT_EQ(tally.fullScans, 1);  // the first; so that all others were compared
    EXPECT_GT(tally.reusedFolders, minNodeSize == 0 ? rounds * 5 : rounds / 8);
    all.rounds += tally.rounds;
    all.reusedFolders += tally.reusedFolders;
    all.racingScans += tally.racingScans;
    all.steps += tally.steps;
  }
  EXPECT_GE(all.rounds, 200);
  EXPECT_GE(all.steps, 10'000);
  RecordProperty("operations", all.steps);
  RecordProperty("comparisons", all.rounds);
  RecordProperty("reusedFolders", all.reusedFolders);
  RecordProperty("racingScans", all.racingScans);
}

TEST_P(JournalDifferential, holdsAtTheLimitOfWatches) {
  const Tally tally = compared({.seed = 2, .rounds = 40, .watchLimit = 40});
  EXPECT_TRUE(tally.differences.empty()) << firstOf(tally);
  EXPECT_EQ(tally.fullScans, 1);
}

TEST_P(JournalDifferential, holdsForAUserWhomPermissionsBind) {
  if (GetParam() == Hearing::mark) GTEST_SKIP() << "permissions bind nobody who may mark";
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::becomeNobody()) return false;
    const Tally tally = compared({.seed = 3, .rounds = 60, .permissions = true});
    if (!tally.differences.empty()) std::puts(firstOf(tally).c_str());
    return tally.differences.empty() && tally.fullScans == 1;
  }));
}

// A rule that is switched off.
struct Mutation {
  const char* name;
  void (*apply)(RecorderRules&);
  std::size_t watchLimit = 0;
};

void PrintTo(const Mutation& mutation, std::ostream* out) {
  *out << mutation.name;
}

class JournalMutation : public testing::TestWithParam<std::tuple<Hearing, Mutation>> {};

TEST_P(JournalMutation, isFoundOut) {
  const auto& [hearing, mutation] = GetParam();
  if (hearing == Hearing::mark && !grantsMark()) GTEST_SKIP() << "no mark to be had here";
  Settings settings{.seed = 4,
                    .rounds = 2'000,
                    .steps = {2, 3, 4, 2, 3, 30},
                    .watchLimit = mutation.watchLimit,
                    .stopsAtFirst = true};
  settings.rules.marksFileSystem = hearing == Hearing::mark;
  mutation.apply(settings.rules);
  const Tally tally = compared(settings);
  EXPECT_FALSE(tally.differences.empty());
  RecordProperty("rounds", tally.rounds);
}

std::string nameOfMutation(const testing::TestParamInfo<std::tuple<Hearing, Mutation>>& tested) {
  return std::get<Mutation>(tested.param).name + nameOf(std::get<Hearing>(tested.param));
}

// Something appears in every fourth folder just when it begins to be watched.
void createMeanwhile(RecorderRules& rules) {
  rules.betweenWatchAndList = [count = 0](const std::string& folder) mutable {
    if (++count % 4 != 0) return;
    std::error_code ignored;
    fs::create_directory(folder + "/a", ignored);
    std::ofstream(folder + "/a/0") << "x";
  };
}

INSTANTIATE_TEST_SUITE_P(
    EachRule, JournalMutation,
    testing::Combine(
        testing::Values(Hearing::watches, Hearing::mark),
        testing::Values(
            Mutation{"watchesBeforeListing",
                     [](RecorderRules& rules) {
                       rules.watchesBeforeListing = false;
                       createMeanwhile(rules);
                     }},
            Mutation{"watchesNewTrees", [](RecorderRules& rules) { rules.watchesNewTrees = false; }},
            Mutation{"newFolderIsTree", [](RecorderRules& rules) { rules.newFolderIsTree = false; }},
            Mutation{"movedFolderIsTree", [](RecorderRules& rules) { rules.movedFolderIsTree = false; }},
            Mutation{"looksAtKnownPlaces", [](RecorderRules& rules) { rules.looksAtKnownPlaces = false; }},
            Mutation{"drainsBeforeAnswering",
                     [](RecorderRules& rules) { rules.drainsBeforeAnswering = false; }},
            Mutation{"unwatchedIsTree", [](RecorderRules& rules) { rules.unwatchedIsTree = false; }, 40},
            Mutation{"hearsCloseWrite", [](RecorderRules& rules) { rules.deafTo = IN_CLOSE_WRITE; }},
            Mutation{"hearsModify", [](RecorderRules& rules) { rules.deafTo = IN_MODIFY; }},
            Mutation{"hearsAttributes", [](RecorderRules& rules) { rules.deafTo = IN_ATTRIB; }})),
    nameOfMutation);

// A mark tells of folders only where that is asked for.
INSTANTIATE_TEST_SUITE_P(
    EachRuleOfTheMark, JournalMutation,
    testing::Combine(
        testing::Values(Hearing::mark),
        testing::Values(Mutation{"hearsOfFolders", [](RecorderRules& rules) { rules.deafTo = IN_ISDIR; }},
                        Mutation{"hearsArrivals", [](RecorderRules& rules) { rules.deafTo = IN_MOVED_TO; }},
                        Mutation{"hearsDepartures",
                                 [](RecorderRules& rules) { rules.deafTo = IN_MOVED_FROM | IN_DELETE; }})),
    nameOfMutation);

TEST_P(JournalDifferential, holdsWhereThingsAppearWhileTheyAreWatched) {
  Settings settings{.seed = 4, .rounds = 60};
  createMeanwhile(settings.rules);
  const Tally tally = compared(settings);
  EXPECT_TRUE(tally.differences.empty()) << firstOf(tally);
}

}  // namespace
}  // namespace spacemint
