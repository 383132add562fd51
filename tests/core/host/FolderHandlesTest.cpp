#include "core/host/linux/journal/FolderHandles.h"

#include "core/host/linux/FolderOpening.h"
#include "core/host/linux/journal/EventBacklog.h"
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
  EXPECT_EQ(handles.find(handle(2, 1)), FolderHandles::none);  // the inode, used for another folder
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

TEST(EventBacklog, givesOutWhatWasPutIn) {
  EventBacklog backlog;
  for (const std::string name : {"", "a", "abc", "abcd", "a name that is longer"}) {
    auto piece = backlog.room();
    EXPECT_TRUE(piece.empty());
    EventBacklog::append(piece, {3, 5, name});
    EventBacklog::append(piece, {4, 6, "next"});
    backlog.add(std::move(piece));
    const auto first = backlog.next();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->watch, 3);
    EXPECT_EQ(first->what, 5U);
    EXPECT_EQ(first->name, name);
    EXPECT_EQ(backlog.next()->name, "next");
    EXPECT_EQ(backlog.added(), backlog.taken());
    EXPECT_FALSE(backlog.next());
  }
}

}  // namespace
}  // namespace spacemint
