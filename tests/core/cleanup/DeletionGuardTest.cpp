#include "core/cleanup/DeletionGuard.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace spacemint {
namespace {

constexpr std::optional<std::string> allowed;
const std::optional<std::string> notPlain = "{item} isn't a plain absolute path";
const std::optional<std::string> isProtected = "{item} is a protected folder";
const std::optional<std::string> outside = "{item} is outside your home folder";

std::optional<std::string> check(const std::string& path, const std::string& home = "/home/ann") {
  return DeletionGuard{home}.check({.path = path});
}

TEST(DeletionGuard, decidesByTheTextOfThePath) {
  const std::string longName(100'000, 'x');
  const std::pair<std::string, std::optional<std::string>> cases[]{
      {"", notPlain},
      {"notes/a.txt", notPlain},
      {"~/a.txt", notPlain},
      {"/home/ann/x/../Documents", notPlain},
      {"/home/ann/x/..", notPlain},
      {"/..", notPlain},
      {"/System/Volumes/Data..", notPlain},
      {"/System/Volumes/Datax", notPlain},
      {"/", isProtected},
      {"/System/Volumes/Data", isProtected},
      {"/System/Volumes/Data/home/ann/Documents", isProtected},
      {"/home/ann", isProtected},
      {"/home/ann/", isProtected},
      {"/home/ann/Documents/", isProtected},
      {"/home/ann/.local/share/Trash", isProtected},
      {"/home", isProtected},
      {"/usr/", isProtected},
      {"/usr/share", outside},
      {"/home/ann2/file", outside},
      {"/home/an", outside},
      {"/Home/ann/x", outside},
      {"/home//ann/x", outside},
      {"/home/ann/..x", allowed},
      {"/home/ann/x..", allowed},
      {"/home/ann/Downloads/big.zip", allowed},
      {"/System/Volumes/Data/home/ann/big.zip", allowed},
      {"/home/ann/documents", allowed},
      {"/home/ann/not there", allowed},
      {"/home/ann/line\nbreak", allowed},
      {"/home/ann/\xff\xfe", allowed},
      {"/home/ann/" + longName, allowed},
      {"/" + longName, outside},
  };
  for (const auto& [path, reason] : cases) EXPECT_EQ(check(path), reason) << path.substr(0, 100);
}

// The file lists them once more, so that none is lost unnoticed.
TEST(DeletionGuard, protectsTheFoldersOfTheSystemAndOfTheUserWhereverTheHomeFolderIs) {
  std::ifstream folders{SPACEMINT_PROTECTED_FOLDERS};
  int count = 0;
  for (std::string folder; std::getline(folders, folder); ++count) {
    if (!folder.starts_with('~')) {
      EXPECT_EQ(DeletionGuard{"/data/ann"}.check({folder, true, true}), isProtected) << folder;
      continue;
    }
    const std::string path = folder.replace(0, 1, "/home/ann");
    for (const char* home : {"/home/ann", "/home/ann/", "/System/Volumes/Data/home/ann"}) {
      EXPECT_EQ(DeletionGuard{home}.check({path, true, true}), isProtected) << home << " " << path;
      EXPECT_EQ(check("/home/ann/x", home), allowed) << home;
      EXPECT_EQ(check("/home/ben/x", home), outside) << home;
    }
  }
  EXPECT_EQ(count, 49);
}

TEST(DeletionGuard, protectsTheFoldersThatTheHomeFolderLiesIn) {
  const DeletionGuard guard{"/data/people/ann"};
  for (const char* above : {"/data", "/data/people", "/data/people/"}) {
    EXPECT_EQ(guard.check({above, true, true}), isProtected) << above;
  }
  for (const char* beside : {"/data/peopl", "/data/people/an", "/data/x"}) {
    EXPECT_EQ(guard.check({beside, true, true}), allowed) << beside;
  }
}

TEST(DeletionGuard, knowsAHomeFolderThatIsTheRoot) {
  for (const char* home : {"/", "/System/Volumes/Data"}) {
    EXPECT_EQ(check("/x", home), allowed);
    EXPECT_EQ(check("/Documents", home), isProtected);
    EXPECT_EQ(check("/", home), isProtected);
  }
}

TEST(DeletionGuard, takesNamesThatLookAlikeForTheSameOnlyToRefuse) {
  const std::string composed = "/home/zo\u00eb";
  const std::string decomposed = "/home/zoe\u0308";
  EXPECT_EQ(check(decomposed + "/Documents", composed), isProtected);
  EXPECT_EQ(check(decomposed, composed), isProtected);
  EXPECT_EQ(check(decomposed + "/x", composed), outside);
}

TEST(DeletionGuard, refusesALinkUnlessTheLinkItselfIsMeant) {
  const support::TemporaryFolder home;
  std::filesystem::create_directory_symlink("/usr", home / "link");
  const DeletionGuard guard{home.path()};
  EXPECT_EQ(guard.check({.path = home / "link"}), "{item} is a symbolic link");
  EXPECT_EQ(guard.check({.path = home / "link", .linkItself = true}), allowed);
}

}  // namespace
}  // namespace spacemint
