#include "core/host/AtomicFile.h"

#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::namesIn;
using testing::ElementsAre;

constexpr std::size_t limit = 1'000'000;

template <class Value>
int failureOf(const std::expected<Value, Error>& outcome) {
  return outcome ? 0 : outcome.error().domain == Error::system ? outcome.error().code : -1;
}

mode_t modeOf(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? status.st_mode & 0777U : 0;
}

class AtomicFile : public testing::Test {
 protected:
  std::string text() const { return readFile(path, limit).value_or("no file"); }

  support::TemporaryFolder folder;
  const std::string path = folder / "f";
};

TEST_F(AtomicFile, isPrivateAndAlone) {
  const mode_t before = umask(0);
  std::ofstream{path} << "old and longer";
  fs::permissions(path, fs::perms::all);
  ASSERT_TRUE(createPrivateFolders(folder / "new/folders/"));
  EXPECT_TRUE(writeFileAtomically(path, "new"));
  EXPECT_TRUE(writeFileAtomically(folder / "new/folders/f", std::string("\0x", 2)));
  umask(before);
  EXPECT_EQ(text(), "new");
  EXPECT_EQ(readFile(folder / "new/folders/f", 2), std::string("\0x", 2));
  EXPECT_EQ(modeOf(path), 0600U);
  EXPECT_EQ(modeOf(folder / "new"), 0700U);
  EXPECT_EQ(modeOf(folder / "new/folders"), 0700U);
  EXPECT_THAT(namesIn(folder.path()), ElementsAre("f", "new"));
  EXPECT_TRUE(writeFileAtomically(folder / std::string(255, 'n'), "as long as a name can be"));
}

TEST_F(AtomicFile, leavesAnExistingFolderAsItIs) {
  fs::permissions(folder.path(), fs::perms::owner_all | fs::perms::group_read);
  EXPECT_TRUE(createPrivateFolders(folder.path()));
  EXPECT_EQ(modeOf(folder.path()), 0740U);
}

TEST_F(AtomicFile, failsWithTheReason) {
  std::ofstream{path} << "file";
  fs::create_directory(folder / "full");
  std::ofstream{folder / "full/f"} << "x";
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(failureOf(createPrivateFolders(path)), ENOTDIR);
  EXPECT_EQ(failureOf(createPrivateFolders(path + "/below")), ENOTDIR);
  EXPECT_EQ(failureOf(writeFileAtomically(folder / "none/f", "x")), ENOENT);
  EXPECT_EQ(failureOf(writeFileAtomically(path + "/below", "x")), ENOTDIR);
  EXPECT_EQ(failureOf(writeFileAtomically(folder / "full", "x")), EISDIR);
  EXPECT_EQ(failureOf(writeFileAtomically(folder.path() + "/", "x")), EISDIR);
  EXPECT_EQ(failureOf(readFile(folder / "none", limit)), ENOENT);
  EXPECT_EQ(failureOf(readFile(folder.path(), limit)), EISDIR);
  EXPECT_EQ(failureOf(readFile(folder / "pipe", limit)), EINVAL);
  EXPECT_EQ(failureOf(readFile(path, 3)), EFBIG);
  EXPECT_EQ(readFile(path, 4), "file");
  EXPECT_THAT(namesIn(folder.path()), ElementsAre("f", "full", "pipe"));
}

TEST_F(AtomicFile, survivesAFullDisk) {
  ASSERT_TRUE(writeFileAtomically(path, "old"));
  EXPECT_TRUE(support::succeedsInChild([&] {
    support::limitFileSize(8, SIG_IGN);
    return failureOf(writeFileAtomically(path, std::string(100'000, 'x'))) == EFBIG;
  }));
  EXPECT_EQ(text(), "old");
  EXPECT_THAT(namesIn(folder.path()), ElementsAre("f"));
}

TEST_F(AtomicFile, survivesAFolderThatMayNotBeWrittenTo) {
  std::ofstream{path} << "old";
  fs::permissions(path, fs::perms::all);
  fs::permissions(folder.path(), fs::perms{0555});
  EXPECT_TRUE(support::succeedsInChild([&] {
    return support::becomeNobody() && failureOf(writeFileAtomically(path, "new")) == EACCES &&
           failureOf(createPrivateFolders(folder / "new")) == EACCES;
  }));
  EXPECT_EQ(text(), "old");
  fs::permissions(folder.path(), fs::perms::owner_all);
}

TEST_F(AtomicFile, replacesWhatALinkLeadsTo) {
  const support::TemporaryFolder elsewhere;
  std::ofstream{elsewhere / "real"} << "old";
  fs::create_symlink(elsewhere / "real", folder / "middle");
  fs::create_symlink("middle", path);
  fs::create_symlink("nowhere", folder / "dangling");
  EXPECT_TRUE(writeFileAtomically(path, "new"));
  EXPECT_TRUE(fs::is_symlink(path) && fs::is_symlink(folder / "middle"));
  EXPECT_FALSE(fs::is_symlink(elsewhere / "real"));
  EXPECT_EQ(readFile(elsewhere / "real", limit), "new");
  EXPECT_TRUE(writeFileAtomically(folder / "dangling", "new"));
  EXPECT_FALSE(fs::is_symlink(folder / "dangling"));
  EXPECT_EQ(readFile(folder / "dangling", limit), "new");
}

TEST_F(AtomicFile, removesOnlyWhatADeadWriterLeftLongAgo) {
  using std::chrono::minutes;
  struct Case {
    const char* name;
    minutes age;
    bool stays;
  };
  const Case cases[]{
      {".1-1.spacemint-tmp", minutes{61}, false}, {".1-2.spacemint-tmp", minutes{59}, true},
      {"1-3.spacemint-tmp", minutes{61}, true},   {".1-4.spacemint-tmp.json", minutes{61}, true},
      {".1-5.json", minutes{61}, true},
  };
  for (const Case& c : cases) {
    std::ofstream{folder / c.name} << "x";
    fs::last_write_time(folder / c.name, fs::file_time_type::clock::now() - c.age);
  }
  fs::create_directory(folder / ".folder.spacemint-tmp");
  fs::last_write_time(folder / ".folder.spacemint-tmp", fs::file_time_type::clock::now() - minutes{61});
  ASSERT_TRUE(writeFileAtomically(path, "x"));
  for (const Case& c : cases) EXPECT_EQ(fs::exists(folder / c.name), c.stays) << c.name;
  EXPECT_TRUE(fs::exists(folder / ".folder.spacemint-tmp"));
}

}  // namespace
}  // namespace spacemint
