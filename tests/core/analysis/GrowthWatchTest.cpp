#include "core/analysis/GrowthWatch.h"

#include <gmock/gmock.h>

#include <random>

namespace spacemint {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::SizeIs;

constexpr Bytes MB = 1'000'000;
constexpr Date morning{std::chrono::sys_days{std::chrono::year{2026} / 3 / 2}};

auto grows(const std::string& path, Bytes minute) {
  return AllOf(Field(&GrowthLine::path, path),
               Field(&GrowthLine::figures, Field(&GrowthFigures::minute, minute)));
}

// A disk of folders with files, of which the watch sees what changed, every two seconds.
class GrowthWatchTest : public testing::Test {
 protected:
  using Files = std::map<std::string, FolderContents::File>;

  void setSize(const std::string& folder, const std::string& name, Bytes size) {
    FolderContents::File& file = disk[folder][name];
    if (file.inode == 0) file = {.inode = ++lastInode, .name = name, .born = morning + age};
    free -= size - file.size;
    file.size = size;
  }
  void remove(const std::string& folder, const std::string& name) {
    free += disk[folder].at(name).size;
    disk[folder].erase(name);
  }
  void refresh(std::chrono::seconds step = 2s) {
    for (const auto& [folder, files] : disk) {
      FolderContents contents;
      for (const auto& [name, file] : files) contents.files.push_back(file);
      watch.look(folder, contents, lookedBefore, now());
    }
    watch.finish(free, now());
    lookedBefore = morning + age;
    age += step;
  }
  GrowthWatch::Time now() const { return GrowthWatch::Time{1000s + age}; }

  std::map<std::string, Files> disk;
  Bytes free = 100'000 * MB;
  std::chrono::seconds age{1};
  Date lookedBefore = morning;
  std::uint64_t lastInode = 0;
  GrowthWatch watch{"/h"};
};

TEST_F(GrowthWatchTest, namesTheFileThatGrowsAndSaysWhenItStopped) {
  setSize("/h/vm", "disk.img", 5'000 * MB);
  setSize("/h/vm", "notes", MB);
  age = 10s;
  lookedBefore = morning + age;
  for (int i = 0; i < 5; ++i) {
    refresh();
    EXPECT_THAT(watch.lines(), SizeIs(i < 3 ? 0 : 1)) << i;
    setSize("/h/vm", "disk.img", 5'000 * MB + (i + 1) * 6 * MB);
  }
  for (int i = 5; i < 40; ++i) {
    refresh();
    setSize("/h/vm", "disk.img", 5'000 * MB + (i + 1) * 6 * MB);
  }
  ASSERT_THAT(watch.lines(), ElementsAre(Field(&GrowthLine::path, "/h/vm/disk.img")));
  EXPECT_EQ(watch.lines()[0].figures.tenMinutes, 39 * 6 * MB);
  EXPECT_EQ(watch.lines()[0].perSecond(), 3 * MB);
  EXPECT_EQ(watch.lost(), watch.lines()[0].figures);
  ASSERT_TRUE(watch.untilFull());
  EXPECT_NEAR(static_cast<double>(watch.untilFull()->count()), 33'300, 3'500);
  EXPECT_EQ(watch.elsewhere(), GrowthFigures{});

  setSize("/h/vm", "disk.img", 5'000 * MB + 39 * 6 * MB);  // nothing is added any more
  for (int i = 0; i < 8; ++i) refresh();
  ASSERT_THAT(watch.lines(), SizeIs(1));
  EXPECT_FALSE(watch.lines()[0].isGoingOn);
  EXPECT_FALSE(watch.untilFull());
  refresh(11min);
  refresh();
  EXPECT_THAT(watch.lines(), IsEmpty());
}

TEST_F(GrowthWatchTest, tellsGrowthBesideARemovalAndNeitherOfAMove) {
  setSize("/h/old", "film", 800 * MB);
  setSize("/h/old", "other", 700 * MB);
  age = 10s;
  lookedBefore = morning + age;
  refresh();
  setSize("/h/new", "download", 670 * MB);
  remove("/h/old", "film");
  disk["/h/moved"]["other"] = disk["/h/old"]["other"];
  disk["/h/old"].erase("other");
  refresh();
  EXPECT_THAT(watch.lines(), ElementsAre(grows("/h/old", 800 * MB), grows("/h/new/download", 670 * MB)));
  EXPECT_TRUE(watch.lines()[0].isFreed);
  EXPECT_EQ(watch.lost().minute, -130 * MB);
  EXPECT_EQ(watch.elsewhere(), GrowthFigures{});
  disk["/h/new"]["film.mkv"] = std::exchange(disk["/h/new"]["download"], {});
  disk["/h/new"]["film.mkv"].name = "film.mkv";
  disk["/h/new"].erase("download");
  refresh();
  EXPECT_THAT(watch.lines(), testing::Contains(grows("/h/new/film.mkv", 670 * MB)));
  remove("/h/new", "film.mkv");
  refresh();
  EXPECT_THAT(watch.lines(), testing::Contains(grows("/h/new", 670 * MB))) << "no file that is gone";
  free -= 50 * MB;  // a file without a name grows
  refresh();
  EXPECT_EQ(watch.elsewhere().minute, 50 * MB);
}

TEST_F(GrowthWatchTest, tellsOfTheParentWhereGrowthIsSpreadAndKeepsTheOrderOfCloseOnes) {
  for (int i = 0; i < 2'000; ++i) setSize("/h/build/d" + std::to_string(i), "o", MB / 20);
  for (int i = 0; i < 9; ++i) setSize("/h/a", "f" + std::to_string(i), 10 * MB);
  refresh();
  refresh();
  EXPECT_THAT(watch.lines(), ElementsAre(grows("/h/build", 100 * MB), grows("/h/a", 90 * MB)));
  setSize("/h/a", "f9", 25 * MB);  // more, but not by a fifth
  refresh();
  EXPECT_THAT(watch.lines(), ElementsAre(grows("/h/build", 100 * MB), grows("/h/a", 115 * MB)));
  setSize("/h/a", "g", 10 * MB);
  refresh();
  EXPECT_THAT(watch.lines(), ElementsAre(grows("/h/a", 125 * MB), grows("/h/build", 100 * MB)));
}

// Whatever happens: what is told, freed and not told is what the volume lost, as long as there are no more
// folders than the watch keeps apart.
TEST_F(GrowthWatchTest, accountsForEveryByteOfRandomHistories) {
  std::mt19937 random{3};
  const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
  const auto folderOf = [](unsigned i) { return "/h/" + std::to_string(i % 40) + "/" + std::to_string(i); };
  refresh();
  for (int i = 0; i < 60; ++i) {
    for (int change = 0; change < 60; ++change) {
      const std::string folder = folderOf(below(900));
      const std::string name = std::to_string(below(3));
      if (below(4) == 0 && disk[folder].contains(name)) {
        remove(folder, name);
      } else {
        setSize(folder, name, static_cast<Bytes>(below(5)) * MB);
      }
    }
    refresh(1s);
    ASSERT_EQ(watch.elsewhere(), GrowthFigures{}) << i;
    if (i < 30) continue;  // before, a tenth of what was freed is too little for a line
    Bytes told = 0;
    for (const GrowthLine& line : watch.lines())
      told += line.isFreed ? -line.figures.tenMinutes : line.figures.tenMinutes;
    ASSERT_EQ(told, watch.lost().tenMinutes) << i;
  }
}

}  // namespace
}  // namespace spacemint
