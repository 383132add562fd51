#include "core/host/DeletedFiles.h"

#include "core/host/linux/ProcText.h"
#include "support/Files.h"
#include "support/HoldingProcess.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace spacemint {
namespace {

constexpr off_t MiB = 1'048'576;

TEST(ProcText, findsDeletedFilesInAnyText) {
  EXPECT_EQ(deletedPath("/home/ann/a (deleted) (deleted)"), "/home/ann/a (deleted)");
  for (const char* link : {"", "/home/ann/a", "socket:[1234]", "pipe:[1] (deleted)", " (deleted)"}) {
    EXPECT_FALSE(deletedPath(link)) << link;
  }
  const auto mappings = parseDeletedMappings(
      "7f00-7f01 r-xp 00000000 08:1f 42                 /usr/lib/a b\\012c.so (deleted)\n"
      "7f02-7f03 rw-p 00001000 08:1f 42                 /usr/lib/a b\\012c.so (deleted)\n"
      "7f04-7f05 rw-p 00001000 08:1f 43                 /usr/lib/there.so\n"
      "7f06-7f07 rw-p 00001000 08:1x 44                 /no/device (deleted)\n"
      "7f08-7f09 rw-p 00001000 08:1f -1                 /no/inode (deleted)\n"
      "7f0a-7f0b rw-p 08:1f 45 /no/offset (deleted)\n"
      "7f0c-7f0d rw-p 00000000 00:00 0\n"
      " /deleted (deleted)");
  EXPECT_EQ(
      mappings,
      (std::vector{DeletedMapping{
          .range = "7f00-7f01", .device = makedev(8, 0x1f), .inode = 42, .path = "/usr/lib/a b\nc.so"}}));
}

void holdOpen(const std::string& path) {
  [[maybe_unused]] const int kept = open(path.c_str(), O_RDWR);
}

const DeletedFile* fileAt(const DeletedFiles& deleted, const std::string& path) {
  const auto found = std::ranges::find(deleted.files, path, &DeletedFile::path);
  return found != deleted.files.end() ? &*found : nullptr;
}

TEST(DeletedFiles, areFoundOnceWithEveryProgramThatKeepsThem) {
  const support::TemporaryFolder folder;
  const std::string shared = folder / "log (deleted)";
  for (const std::string& path :
       {shared, folder / "library", folder / "linked", folder / "there (deleted)"}) {
    ASSERT_TRUE(support::allocateFile(path, 3 * MiB));
  }
  std::filesystem::create_hard_link(folder / "linked", folder / "other name");
  const support::HoldingProcess first{[&] {
    prctl(PR_SET_NAME, "first \xff\n");
    for (const char* name : {"log (deleted)", "log (deleted)", "linked", "there (deleted)"}) {
      holdOpen(folder / name);
    }
  }};
  const support::HoldingProcess second{[&] {
    prctl(PR_SET_NAME, "second");
    holdOpen(shared);
    const int library = open((folder / "library").c_str(), O_RDONLY);
    mmap(nullptr, 4096, PROT_READ, MAP_PRIVATE, library, 0);
    close(library);
  }};
  for (const char* name : {"log (deleted)", "library", "linked"}) std::filesystem::remove(folder / name);
  struct stat status {};
  ASSERT_EQ(stat(folder.path().c_str(), &status), 0);

  const DeletedFiles deleted = deletedFilesInUse();
  const DeletedFile* log = fileAt(deleted, shared);
  ASSERT_NE(log, nullptr);
  EXPECT_GE(log->size, 3 * MiB);
  EXPECT_LT(log->size, 4 * MiB);
  std::vector<RunningProgram> both{{first.pid(), "first \xff"}, {second.pid(), "second"}};
  std::ranges::sort(both);
  EXPECT_EQ(log->programs, both);
  const DeletedFile* library = fileAt(deleted, folder / "library");
  ASSERT_NE(library, nullptr);
  EXPECT_EQ(library->pool, log->pool);
  EXPECT_EQ(library->programs, (std::vector{RunningProgram{second.pid(), "second"}}));
  // It has another name, so it will not be gone.
  EXPECT_EQ(fileAt(deleted, folder / "linked"), nullptr);
  EXPECT_EQ(fileAt(deleted, folder / "there"), nullptr);
  EXPECT_EQ(std::ranges::count(deleted.files, shared, &DeletedFile::path), 1);
}

TEST(DeletedFiles, ofOthersAreRefusedAndCounted) {
  if (geteuid() != 0) GTEST_SKIP() << "needs root to become another user";
  const support::TemporaryFolder folder;
  ASSERT_TRUE(support::allocateFile(folder / "secret", MiB));
  const support::HoldingProcess other{[&] { holdOpen(folder / "secret"); }};
  std::filesystem::remove(folder / "secret");
  ASSERT_NE(fileAt(deletedFilesInUse(), folder / "secret"), nullptr);
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::becomeNobody()) return false;
    const DeletedFiles deleted = deletedFilesInUse();
    return fileAt(deleted, folder / "secret") == nullptr && deleted.refused > 0 &&
           deleted.programs > deleted.refused;
  }));
}

}  // namespace
}  // namespace spacemint
