#include "core/cleanup/DeletionGuard.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace spacemint {
namespace {

constexpr std::optional<std::string> allowed;
const std::optional<std::string> notPlain = "isn't a plain absolute path";
const std::optional<std::string> isProtected = "is a protected folder";
const std::optional<std::string> outside = "is outside your home folder";

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

// Written down once more here, so that none is lost unnoticed.
const char* const mustStay[]{"/",        "/System",  "/Library",
                             "/Users",   "/private", "/Applications",
                             "/Volumes", "/usr",     "/System/Volumes/Data",
                             "/bin",     "/sbin",    "/etc",
                             "/var",     "/tmp",     "/opt",
                             "/home",    "/root",    "/boot",
                             "/dev",     "/proc",    "/sys",
                             "/run",     "/srv",     "/mnt",
                             "/media",   "/lib",     "/lib64"};
const char* const mustStayInHome[]{"",
                                   "/Library",
                                   "/Desktop",
                                   "/Documents",
                                   "/Downloads",
                                   "/Movies",
                                   "/Music",
                                   "/Pictures",
                                   "/Library/Application Support",
                                   "/Library/Caches",
                                   "/Library/Containers",
                                   "/.Trash",
                                   "/.config",
                                   "/.local",
                                   "/.local/share",
                                   "/.local/share/Trash",
                                   "/.cache",
                                   "/.ssh",
                                   "/.gnupg",
                                   "/Videos",
                                   "/Public",
                                   "/Templates"};

TEST(DeletionGuard, protectsTheFoldersOfTheSystemAndOfTheUserWhereverTheHomeFolderIs) {
  for (const char* folder : mustStay) {
    EXPECT_EQ(DeletionGuard{"/data/ann"}.check({folder, true, true}), isProtected) << folder;
  }
  const char* spellings[]{"/home/ann", "/home/ann/", "/System/Volumes/Data/home/ann"};
  for (const char* home : spellings) {
    for (const std::string folder : mustStayInHome) {
      const std::string path = "/home/ann" + folder;
      EXPECT_EQ(DeletionGuard{home}.check({path, true, true}), isProtected) << home << " " << path;
    }
    EXPECT_EQ(check("/home/ann/x", home), allowed) << home;
    EXPECT_EQ(check("/home/ben/x", home), outside) << home;
  }
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
  EXPECT_EQ(guard.check({.path = home / "link"}), "is a symbolic link");
  EXPECT_EQ(guard.check({.path = home / "link", .linkItself = true}), allowed);
}

}  // namespace
}  // namespace spacemint
