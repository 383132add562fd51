#include "core/cleanup/Cleanup.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <map>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::TemporaryFolder;
using Kind = CleanupFailure::Kind;

// Removes nothing: it notes what it is asked to remove, and fails where it is told to.
class FakeRemoval final : public Removal {
 public:
  std::vector<std::vector<std::string>> batches = {};
  std::optional<Error> openError = {};
  std::optional<Error> listError = {};
  std::map<std::string, Error> errors = {};
  std::vector<std::string> removed = {};

  std::expected<void, Error> remove(const RemovalTarget& target) override { return take(target.path); }

  std::expected<std::unique_ptr<OpenedForRemoval>, Error> open(const RemovalTarget&) override {
    if (openError) return std::unexpected(*openError);
    return std::make_unique<Opened>(*this);
  }

 private:
  class Opened final : public OpenedForRemoval {
   public:
    explicit Opened(FakeRemoval& owner) : owner_(owner) {}
    std::expected<std::vector<std::string>, Error> nextNames() override {
      if (next_ < owner_.batches.size()) return owner_.batches[next_++];
      if (owner_.listError) return std::unexpected(*owner_.listError);
      return std::vector<std::string>{};
    }
    std::expected<void, Error> remove(const std::string& name) override { return owner_.take(name); }

   private:
    FakeRemoval& owner_;
    std::size_t next_ = 0;
  };

  std::expected<void, Error> take(const std::string& name) {
    if (const auto found = errors.find(name); found != errors.end()) return std::unexpected(found->second);
    removed.push_back(name);
    return {};
  }
};

const DeletionGuard ann{"/home/ann"};

TEST(CleanupDelete, refusesInWordsAndTouchesNothing) {
  const std::pair<std::string, std::string> cases[]{
      {"/home/ann/Documents", "~/Documents is a protected folder"},
      {"/home/ann/Library/", "~/Library/ is a protected folder"},
      {"/System/Volumes/Data/home/ann/Documents", "~/Documents is a protected folder"},
      {"/home/ann", "~ is a protected folder"},
      {"/usr/share", "/usr/share is outside your home folder"},
      {"notes", "notes isn't a plain absolute path"},
      // Spellings that are other texts but the same folders.
      {"/home/ann//Documents", "~//Documents is a protected folder"},
      {"/home/ann/./Documents/.", "~/./Documents/. is a protected folder"},
      {"/home/ann//", "~// is a protected folder"},
      {"/home/ann/.", "~/. is a protected folder"},
      {"/System/Volumes/Data//home/ann/Documents", "//home/ann/Documents is outside your home folder"},
  };
  for (const auto& [path, message] : cases) {
    FakeRemoval removal;
    EXPECT_EQ(Cleanup::deleteItem({path, ann, removal}), CleanupFailure::refused(message)) << path;
    EXPECT_TRUE(removal.removed.empty());
  }
}

TEST(CleanupDelete, removesWhatTheUserReads) {
  FakeRemoval removal;
  for (const char* path : {"/home/ann/x", "/System/Volumes/Data/home/ann/x", "/home/ann//y/./z/"}) {
    EXPECT_EQ(Cleanup::deleteItem({path, ann, removal}), std::nullopt) << path;
  }
  EXPECT_EQ(removal.removed, (std::vector<std::string>{"/home/ann/x", "/home/ann/x", "/home/ann//y/./z/"}));
}

TEST(CleanupDelete, tellsAMissingRightFromOtherErrors) {
  const auto caused = [](Error cause) {
    return Error{.domain = "any", .code = 13, .message = "m", .underlying = std::make_shared<Error>(cause)};
  };
  const auto error = [](std::string_view domain, int code) {
    return Error{.domain = std::string{domain}, .code = code, .message = "m"};
  };
  const auto other = CleanupFailure::other("m");
  const auto missingRight = CleanupFailure::needsFullDiskAccess();
  const std::pair<Error, CleanupFailure> cases[]{
      {error(Error::system, EPERM), missingRight},
      {error(Error::system, EACCES), missingRight},
      {error(Error::system, EBUSY), other},
      {error(Error::system, 257), other},
      {error(Cleanup::fileManagerErrorDomain, 257), missingRight},
      {error(Cleanup::fileManagerErrorDomain, 513), missingRight},
      {error(Cleanup::fileManagerErrorDomain, EACCES), other},
      {error("any", EACCES), other},
      {caused(error(Error::system, EACCES)), missingRight},
      {caused(caused(error(Cleanup::fileManagerErrorDomain, 513))), missingRight},
      {caused(caused(error("any", 1))), other},
  };
  for (const auto& [problem, failure] : cases) {
    FakeRemoval removal;
    removal.errors = {{"/home/ann/x", problem}, {"b", problem}};
    removal.batches = {{"a", "b", "c"}};
    EXPECT_EQ(Cleanup::deleteItem({"/home/ann/x", ann, removal}), failure);
    EXPECT_EQ(Cleanup::deleteContents({"/home/ann/x", ann, removal}), failure);
    EXPECT_EQ(removal.removed, std::vector<std::string>{"a"});
    removal.batches = {};
    removal.listError = problem;
    EXPECT_EQ(Cleanup::deleteContents({"/home/ann/x", ann, removal}), failure);
    removal.listError = {};
    removal.openError = problem;
    EXPECT_EQ(Cleanup::deleteContents({"/home/ann/x", ann, removal}), failure);
  }
}

TEST(CleanupContents, asksTheGuardAboutEveryEntry) {
  const std::pair<std::string, std::string> cases[]{
      {"/home/ann", "~/Documents is a protected folder"},
      {"/home/ann/", "~/Documents is a protected folder"},
      {"/home/ann//", "~//Documents is a protected folder"},
      {"/System/Volumes/Data/home/ann", "~/Documents is a protected folder"},
  };
  for (const auto& [folder, message] : cases) {
    FakeRemoval removal;
    removal.batches = {{"x"}, {"y", "Documents", "z"}};
    EXPECT_EQ(Cleanup::deleteContents({folder, ann, removal}), CleanupFailure::refused(message)) << folder;
    EXPECT_EQ(removal.removed, (std::vector<std::string>{"x", "y"}));
  }
  FakeRemoval removal;
  EXPECT_EQ(Cleanup::deleteContents({"cache", ann, removal}),
            CleanupFailure::refused("not an absolute path"));
  EXPECT_EQ(Cleanup::deleteContents({"", ann, removal}), CleanupFailure::refused("not an absolute path"));
}

// An environment variable may have moved it anywhere.
TEST(CleanupCache, isEmptiedOnlyWhereItMayItselfBeRemoved) {
  const std::pair<std::string, std::optional<CleanupFailure>> cases[]{
      {"/home/ann/.gradle/caches", std::nullopt},
      {"/home/ann/Documents", CleanupFailure::refused("~/Documents is a protected folder")},
      {"/home/ann//.cache/.", CleanupFailure::refused("~//.cache/. is a protected folder")},
      {"/home/ann", CleanupFailure::refused("~ is a protected folder")},
      {"/home", CleanupFailure::refused("/home is a protected folder")},
      {"/", CleanupFailure::refused("/ is a protected folder")},
      {"/data/cache", CleanupFailure::refused("/data/cache is outside your home folder")},
  };
  const auto target = [](std::string_view id) {
    return &*std::ranges::find(DevTools::cleanups(), id, &CleanupTarget::id);
  };
  for (const auto& [path, failure] : cases) {
    FakeRemoval removal;
    removal.batches = {{"entry"}};
    EXPECT_EQ(Cleanup::emptyCache({path, ann, removal}), failure) << path;
    EXPECT_EQ(removal.removed.empty(), failure.has_value()) << path;
    EXPECT_EQ(Cleanup::cacheRefusal({target("gradle"), path, 1}, ann), failure) << path;
    // What only a tool touches may lie elsewhere, but in no folder that the tool must not take for its own.
    EXPECT_EQ(Cleanup::cacheRefusal({target("uv"), path, 1}, ann),
              path == "/data/cache" ? std::nullopt : failure)
        << path;
  }
}

TEST(CleanupWorktree, isLeftToGitWhereGitKnowsIt) {
  using Words = std::vector<std::string>;
  const Words start{
      "-c",    "core.fsmonitor=false", "-c", "core.hooksPath=/dev/null", "-C", "/code/app", "worktree",
      "remove"};
  const auto git = [&](const Words& end) {
    Words words = start;
    words.insert(words.end(), end.begin(), end.end());
    return Cleanup::WorktreeRemoval{Cleanup::RunGit{words}};
  };
  const Cleanup::WorktreeRemoval folder = Cleanup::DeleteFolder{"/code/fix"};
  const GitWorktree known{.path = "/code/fix", .repositoryPath = "/code/app"};
  GitWorktree orphan = known;
  orphan.isOrphaned = true;
  EXPECT_EQ(Cleanup::worktreeRemoval(known, 3), git({"--force", "/code/fix"}));
  EXPECT_EQ(Cleanup::worktreeRemoval(known, 0), git({"/code/fix"}));
  EXPECT_EQ(Cleanup::worktreeRemoval(known, std::nullopt), git({"/code/fix"}));
  EXPECT_EQ(Cleanup::worktreeRemoval(orphan, 3), folder);
  EXPECT_EQ(Cleanup::worktreeRemoval({.path = "/code/fix"}, 3), folder);
}

std::optional<Kind> kindOf(const std::optional<CleanupFailure>& failure) {
  return failure ? std::optional{failure->kind} : std::nullopt;
}

class RealCleanup : public testing::Test {
 protected:
  RealCleanup() {
    fs::create_directories(home / ".local/share/Trash/files/folder");
    std::ofstream(home / ".local/share/Trash/files/file");
    std::ofstream(outside / "treasure");
    fs::create_directory_symlink(outside.path(), home / ".local/share/Trash/files/link");
  }

  std::optional<CleanupFailure> empty(const std::string& folder,
                                      std::optional<FileIdentity> identity = {}) const {
    return Cleanup::deleteContents({folder, guard, *removal, identity});
  }

  TemporaryFolder outside;
  TemporaryFolder home;
  const std::string files = home / ".local/share/Trash/files";
  const DeletionGuard guard{home.path()};
  const std::unique_ptr<Removal> removal = hostRemoval();
};

TEST_F(RealCleanup, emptiesAFolderAndKeepsIt) {
  EXPECT_EQ(empty(home / ".local/share/Trash"), std::nullopt);
  EXPECT_TRUE(fs::is_empty(home / ".local/share/Trash"));
  EXPECT_EQ(empty(home / ".local/share/Trash"), std::nullopt);
  EXPECT_TRUE(fs::exists(outside / "treasure"));
}

TEST_F(RealCleanup, followsNoLinkToTheFolderItEmpties) {
  fs::create_directory_symlink(files, home / "link");
  EXPECT_EQ(empty(home / "link"), CleanupFailure::refused("~/link is a symbolic link"));
  EXPECT_EQ(Cleanup::deleteItem({home / "link", guard, *removal}),
            CleanupFailure::refused("~/link is a symbolic link"));
  EXPECT_EQ(Cleanup::emptyCache({home / "link", guard, *removal}),
            CleanupFailure::refused("~/link is a symbolic link"));
  EXPECT_EQ(kindOf(empty(home / "link/")), Kind::other);
  EXPECT_EQ(kindOf(Cleanup::deleteItem({home / "link/folder", guard, *removal})), Kind::other);
  EXPECT_TRUE(fs::exists(files + "/folder"));
}

TEST_F(RealCleanup, leavesAnotherFolderThanTheConfirmedOneAlone) {
  const auto confirmed = fileIdentity(files);
  fs::rename(files, home / "moved");
  fs::create_directories(files + "/new");
  EXPECT_EQ(kindOf(empty(files, *confirmed)), Kind::other);
  EXPECT_EQ(kindOf(Cleanup::deleteItem({files, guard, *removal, *confirmed})), Kind::other);
  EXPECT_TRUE(fs::exists(files + "/new"));
  EXPECT_EQ(Cleanup::deleteItem({home / "moved", guard, *removal, *confirmed}), std::nullopt);
  EXPECT_FALSE(fs::exists(home / "moved"));
}

TEST_F(RealCleanup, worksInAHomeFolderBehindALink) {
  fs::create_directory_symlink(home.path(), outside / "home");
  const DeletionGuard behindLink{outside / "home"};
  EXPECT_EQ(Cleanup::deleteItem({outside / "home/.local/share/Trash/files", behindLink, *removal}),
            std::nullopt);
  EXPECT_FALSE(fs::exists(files));
}

}  // namespace
}  // namespace spacemint
