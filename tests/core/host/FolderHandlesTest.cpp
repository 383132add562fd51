#include "core/host/linux/journal/FolderHandles.h"

#include "core/host/linux/FolderOpening.h"
#include "core/host/linux/journal/FileSystemTraits.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>

#include <filesystem>

namespace spacemint {
namespace {

FolderHandle handle(char inode, char generation = 0) {
  return {.type = 1, .bytes = {inode, 0, 0, 0, generation}};
}

TEST(FolderHandles, giveEachHandleANumberUntilItIsDropped) {
  FolderHandles handles{7};
  EXPECT_EQ(handles.add(handle(1)), 7);
  EXPECT_EQ(handles.add(handle(2)), 8);
  EXPECT_EQ(handles.add(handle(1)), 7);
  EXPECT_EQ(handles.find(handle(2)), 8);
  EXPECT_EQ(handles.find(handle(2, 1)), FolderHandles::none);  // the inode, reused for another folder
  handles.drop(7);
  handles.drop(7);
  handles.drop(99);
  handles.drop(-1);
  EXPECT_EQ(handles.find(handle(1)), FolderHandles::none);
  EXPECT_EQ(handles.add(handle(3)), 7);
  EXPECT_EQ(handles.add(handle(4)), 9);
  EXPECT_EQ(handles.find(handle(2)), 8);
}

TEST(FolderHandles, areTheFoldersOwnWhereverItIs) {
  const support::TemporaryFolder folder;
  std::filesystem::create_directory(folder / "a");
  const auto before = FolderHandle::of(openFolder(AT_FDCWD, (folder / "a").c_str()));
  if (!before) GTEST_SKIP() << "no handles here";
  std::filesystem::rename(folder / "a", folder / "b");
  std::filesystem::create_directory(folder / "a");
  EXPECT_EQ(FolderHandle::of(openFolder(AT_FDCWD, (folder / "b").c_str())), before);
  EXPECT_NE(FolderHandle::of(openFolder(AT_FDCWD, (folder / "a").c_str())), before);
}

TEST(FileSystemTraits, trustOnlyWhatNobodyElseChanges) {
  struct Case {
    const char* name;
    std::uint32_t type;
    bool isOnBlockDevice;
    FileSystemTraits traits;
  };
  constexpr FileSystemTraits none;
  constexpr FileSystemTraits local{.reportsAllChanges = true};
  constexpr FileSystemTraits withHandles{.reportsAllChanges = true, .hasLastingHandles = true};
  for (const Case& tested : {Case{"ext4", 0xEF53, true, withHandles},
                             {"xfs", 0x58465342, true, withHandles},
                             {"btrfs", 0x9123683E, false, withHandles},
                             {"tmpfs", 0x01021994, false, withHandles},
                             {"vfat", 0x4D44, true, local},
                             {"zfs", 0x2FC12FC1, false, local},
                             {"fuseblk", 0x65735546, true, local},
                             {"fuse", 0x65735546, false, none},
                             {"nfs", 0x6969, false, none},
                             {"cifs", 0xFF534D42, false, none},
                             {"smb2", 0xFE534D42, false, none},
                             {"9p", 0x01021997, false, none},
                             {"ceph", 0x00C36400, false, none},
                             {"overlay", 0x794C7630, false, none},
                             {"ecryptfs", 0xF15F, false, none},
                             {"unknown", 0x12345678, true, none}}) {
    EXPECT_EQ(traitsOf(tested.type, tested.isOnBlockDevice), tested.traits) << tested.name;
  }
  EXPECT_EQ(traitsOf(FileHandle{}), none);
  EXPECT_EQ(traitsOf(openFolder(AT_FDCWD, "/proc")), none);
}

}  // namespace
}  // namespace spacemint
