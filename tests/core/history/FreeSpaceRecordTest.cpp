#include "core/history/FreeSpaceRecord.h"

#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <array>
#include <random>

namespace spacemint {
namespace {

using namespace std::chrono_literals;
using testing::SizeIs;

constexpr Date start{std::chrono::sys_days{std::chrono::year{2026} / 3 / 2}};

FreeSpaceReading reading(int hour) {
  return {.date = start + hour * 1h + 7min, .free = 1'000'000LL * hour, .total = Bytes{1} << 62};
}

class FreeSpaceRecordTest : public testing::Test {
 protected:
  void addHours(int from, int to) const {
    for (int hour = from; hour < to; ++hour) ASSERT_TRUE(record.add(reading(hour)));
  }

  support::TemporaryFolder folder;
  const FreeSpaceRecord record = FreeSpaceRecord::ofVolume(folder.path(), "/home");
};

TEST_F(FreeSpaceRecordTest, keepsOneReadingAnHourForFourteenDaysInAFileOfFixedSize) {
  EXPECT_THAT(record.readings(start), SizeIs(0));
  addHours(0, 1);
  struct stat status {};
  ASSERT_EQ(stat(record.path.c_str(), &status), 0);
  EXPECT_GE(status.st_blocks * 512, 16'384) << "a full disk would stop later readings";
  addHours(1, 700);
  ASSERT_TRUE(record.add({.date = reading(699).date + 20min, .free = 5, .total = 9}));  // the same hour
  const auto kept = record.readings(reading(699).date);
  ASSERT_THAT(kept, SizeIs(14 * 24 + 1));
  for (std::size_t i = 0; i < kept.size(); ++i) EXPECT_EQ(kept[i], reading(363 + static_cast<int>(i)));
  EXPECT_EQ(support::readText(record.path).size(), 16'384U);
  EXPECT_THAT(FreeSpaceRecord::ofVolume(folder.path(), "/").readings(start + 2000h), SizeIs(0));
}

TEST_F(FreeSpaceRecordTest, leavesOutWhatAClockSetBackMadeDoubtful) {
  addHours(0, 20);
  addHours(5, 8);  // the clock was set back by 15 hours
  const auto kept = record.readings(reading(7).date);
  ASSERT_THAT(kept, SizeIs(8));
  for (int hour = 0; hour < 8; ++hour) EXPECT_EQ(kept[static_cast<std::size_t>(hour)], reading(hour));
}

// Whatever happened to the file: what is read was written, in order, and the next reading is kept.
TEST_F(FreeSpaceRecordTest, losesOnlyWhatIsDamaged) {
  addHours(0, 300);
  const std::string whole = support::readText(record.path);
  std::mt19937 random{1};
  for (int round = 0; round < 80; ++round) {
    std::string damaged = whole;
    const std::size_t at = random() % (300 * 32);
    damaged[at] = static_cast<char>(static_cast<unsigned>(damaged[at]) ^ (1U << random() % 8));
    const bool isCut = round % 4 == 0;
    if (isCut) damaged.resize(at);
    if (round == 1) damaged.append(1, 'x');
    support::writeText(record.path, damaged);
    const int next = 301 + round % 3;
    ASSERT_TRUE(record.add(reading(next)));
    auto kept = record.readings(reading(next).date);
    ASSERT_FALSE(kept.empty());
    EXPECT_EQ(kept.back(), reading(next));
    kept.pop_back();
    ASSERT_THAT(kept, SizeIs(round == 1 ? 0 : isCut ? at / 32 : 299));
    for (const auto& each : kept) EXPECT_EQ(each, reading(static_cast<int>(each.free / 1'000'000)));
  }
}

TEST_F(FreeSpaceRecordTest, losesNothingWhenItsWriterIsKilled) {
  std::mt19937 random{2};
  int written = 0;
  for (int round = 0; round < 25; ++round) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t writer = support::startChild([&] {
      for (int hour = written;; ++hour) {
        if (!record.add(reading(hour)) || write(ends[1], "x", 1) != 1) return false;
      }
    });
    close(ends[1]);
    const auto wanted = 1 + random() % 80;
    std::array<char, 1> said{};
    for (unsigned i = 0; i < wanted && ::read(ends[0], said.data(), 1) == 1; ++i) ++written;
    kill(writer, SIGKILL);
    while (::read(ends[0], said.data(), 1) == 1) ++written;
    close(ends[0]);
    EXPECT_TRUE(WIFSIGNALED(support::statusOf(writer)));

    const auto read = record.readings(reading(written).date);
    ASSERT_FALSE(read.empty());
    const int newest = static_cast<int>(read.back().free / 1'000'000);
    EXPECT_TRUE(newest == written - 1 || newest == written) << newest << " of " << written;
    written = newest + 1;
    const auto kept = record.readings(reading(newest).date);
    ASSERT_THAT(kept, SizeIs(std::min(written, 14 * 24 + 1)));
    for (std::size_t i = 0; i < kept.size(); ++i)
      EXPECT_EQ(kept[i], reading(written - static_cast<int>(kept.size() - i)));
  }
}

}  // namespace
}  // namespace spacemint
