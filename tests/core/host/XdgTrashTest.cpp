// The trash with real files: what comes into it can be taken back, and whatever cannot stays where it was.

#include "core/base/Unicode.h"
#include "core/host/TrashCan.h"
#include "support/Files.h"
#include "support/OwnMounts.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <cerrno>
#include <optional>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::canMount;
using support::enterOwnMounts;
using support::readText;
using support::succeedsInChild;
using support::TemporaryFolder;
using support::writeText;
using testing::MatchesRegex;

bool standsAt(const std::string& path) {
  std::error_code ignored;
  return fs::exists(fs::symlink_status(path, ignored));
}

int countIn(const std::string& folder) {
  std::error_code ignored;
  const fs::directory_iterator entries(folder, ignored);
  return static_cast<int>(std::distance(begin(entries), end(entries)));
}

class XdgTrashTest : public testing::Test {
 protected:
  XdgTrashTest() {
    fs::create_directory(home / "docs");
    setenv("XDG_DATA_HOME", data.c_str(), 1);
  }
  ~XdgTrashTest() override { unsetenv("XDG_DATA_HOME"); }

  std::expected<std::string, RemovalFailure> move(const std::string& path) {
    return trash->move({.path = path, .linksAllowedUpTo = home.path()});
  }

  // 0 for a success.
  int failureOf(const std::string& path) {
    const auto moved = move(path);
    return moved ? 0 : moved.error().error.code;
  }

  TemporaryFolder home;
  // As the system spells it, for the noted paths are without links.
  const std::string docs = fs::canonical(home.path()).string() + "/docs";
  const std::string data = home / "data/share";
  const std::string files = data + "/Trash/files/";
  const std::string info = data + "/Trash/info/";
  const std::unique_ptr<TrashCan> trash = hostTrash();
};

TEST_F(XdgTrashTest, movesAFileWithANoteOfWhereItWas) {
  writeText(docs + "/a b%.txt");
  EXPECT_EQ(move(docs + "/a b%.txt"), files + "a b%.txt");
  EXPECT_FALSE(standsAt(docs + "/a b%.txt"));
  EXPECT_EQ(readText(files + "a b%.txt"), "text");
  EXPECT_THAT(readText(info + "a b%.txt.trashinfo"),
              MatchesRegex("\\[Trash Info\\]\nPath=" + docs +
                           "/a%20b%25\\.txt\n"
                           "DeletionDate=[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\n"));
}

TEST_F(XdgTrashTest, makesAPrivateTrash) {
  writeText(docs + "/file");
  ASSERT_EQ(failureOf(docs + "/file"), 0);
  for (const auto& folder : {home / "data", data, data + "/Trash", files, info}) {
    EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all) << folder;
  }
}

TEST_F(XdgTrashTest, keepsThingsOfOneNameApart) {
  fs::create_directories(files);
  writeText(files + "same", "already there, without a note");
  for (const char* text : {"first", "second"}) {
    writeText(docs + "/same", text);
    ASSERT_EQ(failureOf(docs + "/same"), 0);
  }
  EXPECT_EQ(readText(files + "same"), "already there, without a note");
  EXPECT_EQ(readText(files + "same 2"), "first");
  EXPECT_EQ(readText(files + "same 3"), "second");
  EXPECT_EQ(countIn(info), 2);
}

TEST_F(XdgTrashTest, movesFoldersAndLinksAsTheyAre) {
  fs::create_directories(docs + "/folder/inner");
  fs::create_directory_symlink(docs + "/folder", docs + "/link");
  EXPECT_EQ(move(docs + "/link/"), files + "link");
  EXPECT_TRUE(fs::is_symlink(files + "link"));
  EXPECT_TRUE(fs::exists(docs + "/folder/inner"));
  EXPECT_EQ(move(docs + "/folder"), files + "folder");
  EXPECT_TRUE(fs::exists(files + "folder/inner"));
}

TEST_F(XdgTrashTest, takesEveryName) {
  const std::string bytes = "\xff\xfe\n";
  writeText(docs + "/" + bytes);
  EXPECT_EQ(move(docs + "/" + bytes), files + bytes);
  EXPECT_THAT(readText(info + bytes + ".trashinfo"), testing::HasSubstr("/docs/%FF%FE%0A\n"));

  // As long as a name can be, in characters of two bytes: the note's name is longer by ten.
  std::string longest = "x";
  while (longest.size() < 255) longest += "ä";
  for (int i = 0; i < 2; ++i) {
    writeText(docs + "/" + longest);
    const auto moved = move(docs + "/" + longest);
    ASSERT_TRUE(moved) << moved.error().error.message;
    EXPECT_TRUE(isValidUtf8(*moved));
    EXPECT_TRUE(standsAt(*moved));
  }
}

TEST_F(XdgTrashTest, losesNothingWhileAnotherProgramSwapsItems) {
  const std::string item = writeText(home / "item", "confirmed");
  const std::string other = writeText(home / "other", "other");
  std::atomic<bool> isDone = false;
  std::thread swapper{[&] {
    while (!isDone) {
      renameat2(AT_FDCWD, item.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE);
      // Takes the place that a wrongly moved item would go back to.
      const int file = open(item.c_str(), O_CREAT | O_EXCL | O_CLOEXEC, 0600);
      if (file >= 0) close(file);
    }
  }};
  for (int round = 0; round < 500; ++round) {
    const auto identity = fileIdentity(item);
    if (identity) static_cast<void>(trash->move({.path = item, .identity = *identity}));
  }
  isDone = true;
  swapper.join();
  EXPECT_GT(countIn(files), 0);
  EXPECT_EQ(countIn(files), countIn(info));
}

TEST_F(XdgTrashTest, refusesWhatIsNoItem) {
  for (const char* path : {"", "docs", "/", "//", "/.", "/..", "/tmp/.", "/tmp/.."}) {
    EXPECT_EQ(failureOf(path), EINVAL) << path;
  }
  EXPECT_EQ(failureOf(docs + "/missing"), ENOENT);
  EXPECT_EQ(failureOf(docs + "/missing/missing"), ENOENT);
  EXPECT_EQ(failureOf("/proc"), EXDEV);
}

TEST_F(XdgTrashTest, refusesItselfAndWhatIsAroundItAndInIt) {
  writeText(docs + "/file");
  ASSERT_EQ(failureOf(docs + "/file"), 0);
  fs::create_directory_symlink(data, docs + "/way");
  for (const auto& path : {home / "data", data, data + "/Trash", files, files + "file"}) {
    EXPECT_EQ(failureOf(path), EINVAL) << path;
  }
  EXPECT_EQ(failureOf(docs + "/way/Trash"), ELOOP);
  EXPECT_TRUE(standsAt(files + "file"));
}

TEST_F(XdgTrashTest, leavesNothingBehindWhereItFails) {
  if (!succeedsInChild(support::becomeNobody)) GTEST_SKIP() << "cannot become another user";
  writeText(docs + "/file");
  fs::permissions(home.path(), fs::perms::all);
  fs::permissions(docs, fs::perms::all & ~fs::perms::group_write & ~fs::perms::others_write);
  if (geteuid() != 0) fs::permissions(docs, fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_TRUE(succeedsInChild([&] {
    // A folder that may not be changed lets nothing go.
    return support::becomeNobody() && failureOf(docs + "/file") == EACCES && countIn(info) == 0;
  }));
  EXPECT_TRUE(standsAt(docs + "/file"));
  fs::permissions(docs, fs::perms::owner_all);
}

// A volume of its own at "volume" in the home folder.
class XdgTrashOnVolumeTest : public XdgTrashTest {
 protected:
  XdgTrashOnVolumeTest() { fs::create_directory(volume); }

  void SetUp() override {
    if (!canMount()) GTEST_SKIP() << "no mounts of our own here";
  }

  bool mountVolume() const {
    return enterOwnMounts() && mount("none", volume.c_str(), "tmpfs", 0, nullptr) == 0;
  }

  // Where the file "folder/file" of the volume went.
  std::optional<std::string> moveFile() {
    fs::create_directory(volume + "/folder");
    writeText(volume + "/folder/file");
    const auto moved = move(volume + "/folder/file");
    if (!moved || readText(*moved) != "text" || standsAt(volume + "/folder/file")) return std::nullopt;
    return moved->substr(volume.size());
  }

  const std::string volume = fs::canonical(home.path()).string() + "/volume";
};

TEST_F(XdgTrashOnVolumeTest, usesTheTrashOfTheVolume) {
  EXPECT_TRUE(succeedsInChild([&] {
    if (!mountVolume()) return false;
    const std::string own = "/.Trash-" + std::to_string(geteuid());
    return moveFile() == own + "/files/file" &&
           readText(volume + own + "/info/file.trashinfo").find("\nPath=folder/file\n") !=
               std::string::npos &&
           fs::status(volume + own).permissions() == fs::perms::owner_all && !standsAt(data) &&
           failureOf(volume + own) == EINVAL && failureOf(volume) == EXDEV;
  }));
}

TEST_F(XdgTrashOnVolumeTest, prefersTheAdministratorsTrashWhereItIsSafe) {
  EXPECT_TRUE(succeedsInChild([&] {
    if (!mountVolume()) return false;
    const std::string own = std::to_string(geteuid());
    mkdir((volume + "/.Trash").c_str(), 0777);
    const bool isUnsafeRefused = moveFile() == "/.Trash-" + own + "/files/file";
    chmod((volume + "/.Trash").c_str(), 01777);
    return isUnsafeRefused && moveFile() == "/.Trash/" + own + "/files/file";
  }));
}

TEST_F(XdgTrashOnVolumeTest, followsNoLinkToAnotherPlace) {
  EXPECT_TRUE(succeedsInChild([&] {
    if (!mountVolume()) return false;
    mkdir((volume + "/elsewhere").c_str(), 01777);
    fs::create_directory_symlink(volume + "/elsewhere", volume + "/.Trash");
    const std::string own = "/.Trash-" + std::to_string(geteuid());
    const bool isLinkRefused = moveFile() == own + "/files/file";
    fs::remove_all(volume + own);
    fs::create_directory_symlink(volume + "/elsewhere", volume + own);
    writeText(volume + "/kept");
    return isLinkRefused && failureOf(volume + "/kept") != 0 && standsAt(volume + "/kept") &&
           fs::is_empty(volume + "/elsewhere");
  }));
}

TEST_F(XdgTrashOnVolumeTest, tellsTwoMountsOfOneFileSystemApart) {
  EXPECT_TRUE(succeedsInChild([&] {
    if (!enterOwnMounts() || mount(docs.c_str(), volume.c_str(), nullptr, MS_BIND, nullptr) != 0)
      return false;
    writeText(volume + "/file");
    return move(volume + "/file") == volume + "/.Trash-" + std::to_string(geteuid()) + "/files/file";
  }));
}

}  // namespace
}  // namespace spacemint
