#include "core/history/SnapshotStore.h"

#include "core/history/Baseline.h"
#include "core/history/SnapshotCodec.h"
#include "core/history/SnapshotWriter.h"
#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"
#include "support/TreeBuilder.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>
#include <tuple>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using std::chrono::sys_days;
using testing::ElementsAre;
using testing::IsEmpty;
using Dates = std::vector<Date>;

constexpr Date someDay{1'700'000'000s};

// A scan of some 40 kB; its number tells which one was read back.
Snapshot scanOf(Date date, std::int64_t number) {
  std::vector<Node> files;
  for (int i = 0; i < 1'000; ++i) files.push_back(support::file("film " + std::to_string(i), 30'000'000));
  return {.date = date, .root = support::folder("/home/ann", std::move(files)), .volumeFree = number};
}

class SnapshotStoreTest : public testing::Test {
 protected:
  void make(std::string_view name, std::string_view text = "{}") const {
    support::writeText(store.directory + "/" + std::string{name}, std::string{text});
  }
  void makeAll(const Dates& dates) const {
    for (const Date date : dates)
      make(std::to_string(floor<std::chrono::seconds>(date).time_since_epoch().count()) + ".json");
  }
  Dates listed() const {
    Dates dates;
    for (const auto& entry : store.entries()) dates.push_back(entry.date);
    return dates;
  }
  // What is there besides the scans that are listed.
  std::size_t otherFiles() const {
    const auto all = std::distance(fs::directory_iterator{store.directory}, fs::directory_iterator{});
    return static_cast<std::size_t>(all) - store.entries().size();
  }
  // The number of the newest scan; -1 where it is not complete.
  std::int64_t newest() const {
    const auto entries = store.entries();
    const auto scan = entries.empty() ? std::unexpected(Error{}) : store.load(entries.front());
    return scan && scan->root.children.size() == 1'000 ? scan->volumeFree : -1;
  }

  support::TemporaryFolder folder;
  const SnapshotStore store{folder / "new/history"};
};

TEST_F(SnapshotStoreTest, listsTheFilesThatAreNamedAfterATimeNewestFirst) {
  EXPECT_THAT(store.entries(), IsEmpty());
  for (const char* name :
       {"1700000000.json",   "1700000000.5.json", "-5.json",          "1e3.json", "9.json",
        "10.json",           ".5.json",           "notes.txt",        "abc.json", "1700000000.json.bak",
        "1700000000",        "1700000001.JSON",   "1700000002.json~", ".json",    " 3.json",
        "4 .json",           "5x.json",           "nan.json",         "inf.json", "1e300.json",
        ".1-6.spacemint-tmp"}) {
    make(name);
  }
  fs::create_directory(folder / "new/history/2000000000.json");
  EXPECT_THAT(listed(), ElementsAre(Date{2'000'000'000s}, someDay + 500ms, someDay, Date{1'000s}, Date{10s},
                                    Date{9s}, Date{500ms}, Date{-5s}));
  EXPECT_EQ(store.entries().at(1).path, folder / "new/history/1700000000.5.json");
}

TEST_F(SnapshotStoreTest, savesUnderTheWholeSecond) {
  const std::tuple<Date, Date, const char*> cases[]{
      {someDay + 999'999us, someDay, "1700000000.json"},
      {someDay, someDay, "1700000000.json"},
      {Date{-1'999ms}, Date{-1s}, "-1.json"},
      {Date{-999ms}, Date{0s}, "0.json"},
  };
  for (const auto& [date, second, name] : cases) {
    const Snapshot scan = scanOf(date, 1);
    const auto saved = store.save(scan);
    EXPECT_EQ(saved, (SnapshotStore::Entry{second, (folder / "new/history/") + name}));
    EXPECT_EQ(std::ranges::count(store.entries(), *saved), 1);
    EXPECT_EQ(store.load(*saved), scan);
  }
  EXPECT_THAT(listed(), ElementsAre(someDay, Date{0s}, Date{-1s}));
  struct stat status {};
  ASSERT_EQ(stat((folder / "new/history").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0700U);
  ASSERT_EQ(stat((folder / "new/history/0.json").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(SnapshotStoreTest, passesErrorsOn) {
  make("1.json", "{");
  EXPECT_EQ(store.load(store.entries().at(0)).error().domain, SnapshotCodec::domain);
  EXPECT_TRUE(store.load({.path = folder / "2.json"}).error().isSystem(ENOENT));
  Snapshot endless = scanOf(Date{1s}, 1);
  endless.duration = Seconds{std::numeric_limits<double>::quiet_NaN()};
  EXPECT_EQ(store.save(endless).error().domain, SnapshotCodec::domain);
  EXPECT_EQ(fs::file_size(folder / "new/history/1.json"), 1U);
  EXPECT_TRUE(
      (SnapshotStore{folder / "new/history/1.json"}).save(scanOf(someDay, 1)).error().isSystem(ENOTDIR));
}

TEST_F(SnapshotStoreTest, prunesToTheTwoNewestAndOneOfEachDay) {
  struct Case {
    const char* what;
    Date now;
    Dates files;
    Dates kept;
    const char* zone = "UTC";
  };
  const Date noon = sys_days{2023y / 11 / 20} + 12h;
  const auto ago = [&](int days, std::chrono::minutes more = 0min) {
    return noon - std::chrono::days{days} - more;
  };
  const Date night = sys_days{2023y / 11 / 10} + 23h + 30min;
  const Date limit = sys_days{2023y / 10 / 22} + 10h;  // noon in Berlin, two weeks before noon of November 5
  const Date later = limit + 14 * 24h + 1h;
  const Case cases[]{
      {"one day", noon, {ago(0, 5min), ago(0, 6min), ago(0, 7min)}, {ago(0, 5min), ago(0, 6min)}},
      {"two old ones", noon, {ago(0), ago(30)}, {ago(0), ago(30)}},
      {"an old one, now third", noon, {ago(0), ago(1), ago(30)}, {ago(0), ago(1)}},
      {"the limit", noon, {ago(0), ago(1), ago(14)}, {ago(0), ago(1), ago(14)}},
      {"beyond the limit", noon, {ago(0), ago(1), ago(14) - 1s}, {ago(0), ago(1)}},
      {"newest of a day",
       noon,
       {ago(0), ago(1), ago(3, 1min), ago(3, 2min), ago(4)},
       {ago(0), ago(1), ago(3, 1min), ago(4)}},
      {"the second's day counts", noon, {ago(0), ago(3), ago(3, 1min)}, {ago(0), ago(3)}},
      {"one night", noon, {ago(0), ago(1), night, night - 1h}, {ago(0), ago(1), night}},
      {"two days in Berlin",
       noon,
       {ago(0), ago(1), night, night - 1h},
       {ago(0), ago(1), night, night - 1h},
       "Europe/Berlin"},
      {"summer time", later, {later, later - 24h, limit}, {later, later - 24h, limit}, "Europe/Berlin"},
      {"summer time, beyond", later, {later, later - 24h, limit - 1s}, {later, later - 24h}, "Europe/Berlin"},
      {"no summer time", later, {later, later - 24h, limit}, {later, later - 24h}},
      {"no such zone", noon, {ago(0), ago(1), ago(2), ago(2, 1min)}, {ago(0), ago(1)}, "Nowhere/Land"},
  };
  for (const Case& c : cases) {
    fs::remove_all(store.directory);
    store.prune({.now = c.now, .timeZone = c.zone});
    makeAll(c.files);
    make("notes.txt");
    store.prune({.now = c.now, .timeZone = c.zone});
    EXPECT_EQ(listed(), c.kept) << c.what;
    EXPECT_EQ(otherFiles(), 1U) << c.what;
  }
}

TEST_F(SnapshotStoreTest, aScanDatedAfterNowIsNotTheNewest) {
  const Dates dates{someDay + 400 * 24h, someDay + 24h + 1min, someDay + 24h, someDay,
                    someDay - 1h,        someDay - 2h};
  makeAll(dates);
  const auto listedAt = [&](Date now) {
    Dates found;
    for (const auto& entry : store.entries(now)) found.push_back(entry.date);
    return found;
  };
  EXPECT_EQ(listedAt(Date::max()), dates);
  EXPECT_THAT(listedAt(someDay), ElementsAre(someDay, someDay - 1h, someDay - 2h, someDay + 400 * 24h,
                                             someDay + 24h + 1min, someDay + 24h));
  EXPECT_EQ(listedAt(Date{}), dates) << "all of a time to come, so the newest is as good as can be";
  store.prune({.now = someDay, .timeZone = "UTC"});
  EXPECT_THAT(listed(), ElementsAre(someDay + 400 * 24h, someDay + 24h + 1min, someDay, someDay - 1h))
      << "the two newest up to now, and one of each later day";
}

TEST_F(SnapshotStoreTest, prunesOnPastWhatCannotBeDeleted) {
  makeAll({someDay, someDay - 1s, someDay - 3s});
  fs::create_directory(folder / "new/history/1699999998.json");
  store.prune({.now = someDay, .timeZone = "UTC"});
  EXPECT_THAT(listed(), ElementsAre(someDay, someDay - 1s, someDay - 2s));
  makeAll({someDay - 3s});
  for (const fs::path place : {folder.path(), folder / "new", folder / "new/history"})
    fs::permissions(place, fs::perms{0555});
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::becomeNobody()) return false;
    store.prune({.now = someDay, .timeZone = "UTC"});
    return listed().size() == 4 && store.save(scanOf(someDay, 1)).error().isSystem(EACCES);
  }));
  for (const fs::path place : {folder.path(), folder / "new", folder / "new/history"})
    fs::permissions(place, fs::perms::owner_all);
}

// Kills this process when the time is over, whatever it is doing then.
void dieAfter(std::chrono::microseconds time) {
  sigevent event{};
  event.sigev_notify = SIGEV_SIGNAL;
  event.sigev_signo = SIGKILL;
  timer_t timer{};
  const itimerspec when{.it_interval = {}, .it_value = {.tv_sec = 0, .tv_nsec = 1'000 * (1 + time.count())}};
  if (timer_create(CLOCK_MONOTONIC, &event, &timer) != 0 || timer_settime(timer, 0, &when, nullptr) != 0)
    _exit(1);
}

class SnapshotStoreKilledTest : public SnapshotStoreTest,
                                public testing::WithParamInterface<std::chrono::seconds> {};

TEST_P(SnapshotStoreKilledTest, losesNothingThatWasSaved) {
  std::mt19937 random{7};
  ASSERT_TRUE(store.save(scanOf(someDay, 0)));
  std::int64_t saved = 0;
  for (int kills = 0; kills < 10 || saved < 100; ++kills) {
    const std::chrono::microseconds moment{random() % 60'000};
    std::array<int, 2> reports{};
    ASSERT_EQ(pipe(reports.data()), 0);
    const pid_t child = support::startChild([&] {
      Snapshot scan = scanOf(someDay + GetParam() * saved, saved);
      dieAfter(moment);
      while (true) {
        ++scan.volumeFree;
        scan.date += GetParam();
        if (!store.save(scan) || write(reports[1], "", 1) != 1) return false;
      }
    });
    close(reports[1]);
    for (char report = 0; read(reports[0], &report, 1) == 1;) ++saved;
    close(reports[0]);
    const int status = support::statusOf(child);
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
    // The last one may be in place though it had no time to say so.
    const std::int64_t found = newest();
    ASSERT_TRUE(found == saved || found == saved + 1) << found << " after " << saved << ", kill " << kills;
    saved = found;
  }
  EXPECT_EQ(store.entries().size(), GetParam() == 0s ? 1U : static_cast<std::size_t>(saved) + 1);
}

INSTANTIATE_TEST_SUITE_P(OverTheSameFileAndBesideIt, SnapshotStoreKilledTest, testing::Values(0s, 1s));

TEST_F(SnapshotStoreTest, twoProcessesMaySaveTheSameScanWhileAThirdReads) {
  ASSERT_TRUE(store.save(scanOf(someDay, 0)));
  std::vector<pid_t> children;
  for (const std::int64_t sign : {1, -1}) {
    children.push_back(support::startChild([&] {
      Snapshot scan = scanOf(someDay, 0);
      bool fine = true;
      for (int i = 1; i <= 25; ++i) {
        scan.volumeFree = 1'000 + sign * i;
        fine = fine && store.save(scan);
      }
      return fine;
    }));
  }
  for (const pid_t child : children) {
    int status = -1;
    while (waitpid(child, &status, WNOHANG) == 0) ASSERT_NE(newest(), -1);
    EXPECT_EQ(status, 0);
  }
  EXPECT_THAT(newest(), testing::AnyOf(1'025, 975));
  EXPECT_EQ(otherFiles(), 0U);
}

TEST(Baseline, isTheScanNearestToADayBeforeTheNewest) {
  const auto history = [](std::initializer_list<int> hours) {
    std::vector<SnapshotStore::Entry> entries;
    for (const int hour : hours) {
      entries.push_back(
          {dateFromUnixSeconds(1'700'000'000) - std::chrono::hours{hour}, std::to_string(hour)});
    }
    return entries;
  };
  EXPECT_EQ(defaultBaseline({}), std::nullopt);
  EXPECT_EQ(defaultBaseline(history({0})), std::nullopt);
  EXPECT_EQ(defaultBaseline(history({0, 3}))->path, "3");
  EXPECT_EQ(defaultBaseline(history({0, 3, 20, 30, 72}))->path, "20");
  EXPECT_EQ(defaultBaseline(history({0, 23, 25}))->path, "23");  // as near; the newer one
  EXPECT_EQ(baselineCandidates(history({0, 3, 20, 30, 72})).back().path, "72");
  EXPECT_EQ(defaultBaseline(history({0, 3, -5, -24})), history({3}).front()) << "not one of a time to come";
  // As far apart as dates can be.
  const std::vector<SnapshotStore::Entry> extremes{{Date::max(), "max"}, {Date{}, "0"}, {Date::min(), "min"}};
  EXPECT_EQ(defaultBaseline(extremes)->path, "0");
}

class SnapshotWriterTest : public testing::Test {
 protected:
  // The revision is also what the snapshot holds, so that the file tells which one was written.
  static Snapshot snapshot(Date date, std::int64_t revision) {
    return {.date = date, .root = {.name = "/"}, .volumeFree = revision};
  }
  std::optional<bool> save(Date date, std::int64_t revision) {
    const auto saved = writer.save(snapshot(date, revision), revision);
    return saved ? std::optional{*saved} : std::nullopt;
  }
  std::vector<std::int64_t> written() const {
    std::vector<std::int64_t> revisions;
    for (const auto& entry : store.entries()) revisions.push_back(store.load(entry).value().volumeFree);
    return revisions;
  }

  using Revisions = std::vector<std::int64_t>;
  support::TemporaryFolder folder;
  const SnapshotStore store{folder / "history"};
  SnapshotWriter writer{store};
  const Date scan{1'700'000'000s};
};

TEST_F(SnapshotWriterTest, neverPutsAnOlderRevisionOverANewerOne) {
  struct Call {
    Date date;
    std::int64_t revision;
    bool saves;
    Revisions written;
  };
  const Call calls[]{
      {scan, 5, true, {5}},
      {scan, 4, false, {5}},
      {scan, 5, false, {5}},
      {scan, 6, true, {6}},
      {scan + 10s, 2, true, {2, 6}},  // another scan, with revisions of its own
      {scan, 6, false, {2, 6}},
      {scan + 1us, 1, true, {2, 1}},  // another scan of the same second takes the file over
      {scan, 7, true, {2, 7}},
      {scan - 10s, 3, true, {2, 7, 3}},
      {scan - 10s, -4, false, {2, 7, 3}},
  };
  for (const Call& call : calls) {
    EXPECT_EQ(save(call.date, call.revision), call.saves) << call.revision;
    EXPECT_EQ(written(), call.written) << call.revision;
  }
}

TEST_F(SnapshotWriterTest, aRevisionThatCouldNotBeSavedCanBeTriedAgain) {
  std::ofstream{folder / "history"} << "in the way";
  EXPECT_EQ(save(scan, 5), std::nullopt);
  std::filesystem::remove(folder / "history");
  EXPECT_EQ(save(scan, 4), true);
  Snapshot endless = snapshot(scan, 6);
  endless.duration = Seconds{std::numeric_limits<double>::infinity()};
  EXPECT_FALSE(writer.save(endless, 6));
  EXPECT_EQ(save(scan, 4), false);
  EXPECT_EQ(written(), Revisions{4});
  EXPECT_EQ(save(scan, 6), true);
}

TEST_F(SnapshotWriterTest, keepsTheNewestRevisionWhateverThreadsBringThem) {
  constexpr std::size_t scans = 20;
  for (std::size_t i = 0; i < scans; ++i) {
    std::vector<std::jthread> running;
    for (std::int64_t revision = 1; revision <= 6; ++revision) {
      running.emplace_back([this, i, revision] { save(scan + i * 1s, revision); });
    }
  }
  EXPECT_EQ(written(), Revisions(scans, 6));
}

}  // namespace
}  // namespace spacemint
