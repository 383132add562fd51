#include "core/history/SnapshotWriter.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <thread>

namespace spacemint {
namespace {

using namespace std::chrono_literals;

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
