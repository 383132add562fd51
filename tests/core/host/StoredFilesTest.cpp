#include "core/host/AtomicFile.h"
#include "core/host/DefaultsStore.h"
#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <limits>
#include <tuple>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

constexpr auto largest = std::numeric_limits<std::int64_t>::max();

class DefaultsStoreTest : public testing::Test {
 protected:
  void write(const std::string& text) const { support::writeText(path, text); }
  std::string text() const { return support::readText(path); }

  support::TemporaryFolder folder;
  const std::string path = folder / "s.json";
};

TEST_F(DefaultsStoreTest, keepsValuesOfEveryTypeAcrossProcesses) {
  const std::string deep = folder / "new/folders/s.json";
  const DefaultsArray mixed{std::int64_t{-1}, true, "x"};
  {
    DefaultsStore store{deep};
    EXPECT_FALSE(store.has("number"));
    ASSERT_TRUE(store.set("number", largest));
    ASSERT_TRUE(store.set("flag", false));
    ASSERT_TRUE(store.set("text", "caf\u00e9 \"\\\n"));
    ASSERT_TRUE(store.set("list", DefaultsArray{"a", ""}));
    ASSERT_TRUE(store.set("mixed", mixed));
    ASSERT_TRUE(store.set("gone", 1));
    ASSERT_TRUE(store.remove("gone"));
  }
  const DefaultsStore store{deep};
  EXPECT_EQ(store.integer("number"), largest);
  EXPECT_EQ(store.boolean("flag"), false);
  EXPECT_EQ(store.string("text"), "caf\u00e9 \"\\\n");
  EXPECT_THAT(store.strings("list").value(), ElementsAre("a", ""));
  EXPECT_EQ(store.value("mixed"), DefaultsValue{mixed});
  EXPECT_FALSE(store.strings("mixed"));
  EXPECT_FALSE(store.has("gone"));

  struct stat status {};
  ASSERT_EQ(stat(fs::path{deep}.parent_path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0700U);
}

TEST_F(DefaultsStoreTest, answersWithTheDefaultOnlyWhereNothingIsStored) {
  struct Case {
    const char* stored;
    std::optional<std::int64_t> integer;
    std::optional<bool> boolean;
    std::optional<std::string> string;
    bool has;
  };
  const Case cases[]{
      {"{}", 20, std::nullopt, std::nullopt, false},
      {R"({"k": 5})", 5, std::nullopt, std::nullopt, true},
      {R"({"k": -9223372036854775808})", -largest - 1, std::nullopt, std::nullopt, true},
      {R"({"k": 9223372036854775808})", std::nullopt, std::nullopt, std::nullopt, true},
      {R"({"k": 7.9})", 7, std::nullopt, std::nullopt, true},
      {R"({"k": -7.9})", -7, std::nullopt, std::nullopt, true},
      {R"({"k": 1e30})", std::nullopt, std::nullopt, std::nullopt, true},
      {R"({"k": true})", std::nullopt, true, std::nullopt, true},
      {R"({"k": "20"})", std::nullopt, std::nullopt, "20", true},
      {R"({"k": null})", std::nullopt, std::nullopt, std::nullopt, true},
      {R"({"k": {"k": 5}})", std::nullopt, std::nullopt, std::nullopt, true},
  };
  for (const Case& c : cases) {
    write(c.stored);
    DefaultsStore store{path};
    store.registerDefaults({{"k", 20}});
    EXPECT_EQ(store.integer("k"), c.integer) << c.stored;
    EXPECT_EQ(store.boolean("k"), c.boolean) << c.stored;
    EXPECT_EQ(store.string("k"), c.string) << c.stored;
    EXPECT_EQ(store.has("k"), c.has) << c.stored;
    EXPECT_EQ(text(), c.stored);
  }
}

TEST_F(DefaultsStoreTest, keepsWhatItDoesNotKnowAndWritesNoDefaults) {
  write(R"({"later": {"a": [1.5, null]}, "k": 1, "big": 18446744073709551615, "nested": [[1]]})");
  DefaultsStore store{path};
  store.registerDefaults({{"default", true}});
  EXPECT_FALSE(store.value("later") || store.value("big") || store.value("nested"));
  ASSERT_TRUE(store.set("k", 2));
  std::string written = text();
  std::erase_if(written, [](char c) { return c == ' ' || c == '\n'; });
  EXPECT_EQ(written, R"({"big":18446744073709551615,"k":2,"later":{"a":[1.5,null]},"nested":[[1]]})");
}

TEST_F(DefaultsStoreTest, putsADamagedFileAsideWithItsBytes) {
  const std::string damages[]{
      "",
      "{",
      R"({"k": 1} x)",
      "[]",
      "null",
      R"({"k": 1, "k": 2})",
      R"({"other": {"k": 1, "k": 2}})",
      "{\"k\": \"\xff\"}",
      R"({"k": 1e999})",
      R"({"k": )" + std::string(40, '[') + std::string(40, ']') + "}",
      std::string(100'000, '['),
      R"({"k": ")" + std::string(DefaultsStore::maximumSize, 'x') + "\"}",
      std::string("{}\0", 3),
  };
  int number = 0;
  for (const std::string& bytes : damages) {
    write(bytes);
    DefaultsStore store{path};
    store.registerDefaults({{"k", 20}});
    const std::string aside = path + ".damaged-" + std::to_string(++number);
    EXPECT_EQ(store.integer("k"), 20) << bytes.substr(0, 40);
    EXPECT_THAT(store.setAside(), ElementsAre(aside)) << bytes.substr(0, 40);
    EXPECT_EQ(support::readText(aside), bytes);
    EXPECT_FALSE(fs::exists(path));
  }
}

TEST_F(DefaultsStoreTest, aFileDamagedWhileItRunsStaysUntilTheNextChange) {
  DefaultsStore store{path};
  ASSERT_TRUE(store.set("k", 1));
  write("{\"k\": 5");
  store.refresh();
  EXPECT_EQ(store.integer("k"), 1);
  ASSERT_TRUE(store.readError());
  EXPECT_EQ(store.readError()->domain, DefaultsStore::damaged);
  EXPECT_EQ(text(), "{\"k\": 5");

  ASSERT_TRUE(store.set("other", 2));
  EXPECT_FALSE(store.readError());
  EXPECT_EQ(DefaultsStore{path}.integer("k"), 1);
  EXPECT_EQ(DefaultsStore{path}.integer("other"), 2);
  EXPECT_EQ(support::readText(path + ".damaged-1"), "{\"k\": 5");
}

TEST_F(DefaultsStoreTest, leavesAFileAloneThatItMayNotRead) {
  write(R"({"k": 5})");
  fs::permissions(folder.path(), fs::perms::all);
  fs::permissions(path, fs::perms::none);
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::becomeNobody()) return false;
    DefaultsStore store{path};
    store.registerDefaults({{"k", 20}});
    const auto stored = store.set("k", 1);
    return store.integer("k") == 20 && store.readError()->isSystem(EACCES) && !stored &&
           stored.error().isSystem(EACCES) && store.setAside().empty();
  }));
  fs::permissions(path, fs::perms::owner_all);
  EXPECT_EQ(text(), R"({"k": 5})");
}

TEST_F(DefaultsStoreTest, leavesADamagedFileAloneWhenItCannotBeMoved) {
  write("{");
  ASSERT_TRUE(FileLock::take(path + ".lock"));
  fs::permissions(path, fs::perms::all);
  fs::permissions(path + ".lock", fs::perms::all);
  fs::permissions(folder.path(), fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                                     fs::perms::others_exec);
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::becomeNobody()) return false;
    DefaultsStore store{path};
    const auto stored = store.set("k", 1);
    return store.readError()->domain == DefaultsStore::damaged && !stored && stored.error().isSystem(EACCES);
  }));
  EXPECT_EQ(text(), "{");
  fs::permissions(folder.path(), fs::perms::owner_all);
}

TEST_F(DefaultsStoreTest, refusesWhatWouldMakeADamagedFile) {
  DefaultsStore store{path};
  ASSERT_TRUE(store.set("k", 1));
  const std::string before = text();
  const auto big = store.set("k", std::string(DefaultsStore::maximumSize, 'x'));
  const auto notUtf8 = store.set("k", "\xff");
  ASSERT_FALSE(big || notUtf8);
  EXPECT_TRUE(big.error().isSystem(EFBIG));
  EXPECT_TRUE(notUtf8.error().isSystem(EILSEQ));
  EXPECT_EQ(store.integer("k"), 1);
  EXPECT_EQ(text(), before);
}

TEST_F(DefaultsStoreTest, losesNothingWhenTwoProcessesWriteAtOnce) {
  constexpr int count = 40;
  std::array<int, 2> gate{};
  ASSERT_EQ(pipe(gate.data()), 0);
  std::vector<pid_t> children;
  for (const std::string name : {"a", "b"}) {
    children.push_back(support::startChild([&] {
      DefaultsStore store{path};
      close(gate[1]);
      char byte = 0;
      bool stored = read(gate[0], &byte, 1) == 0;  // opens when the last writer of the pipe has closed it
      for (int i = 0; i < count; ++i) stored = stored && store.set(name + std::to_string(i), i);
      return stored;
    }));
  }
  close(gate[1]);
  for (const pid_t child : children) EXPECT_EQ(support::statusOf(child), 0);
  close(gate[0]);

  const DefaultsStore store{path};
  for (int i = 0; i < count; ++i) {
    EXPECT_EQ(store.integer("a" + std::to_string(i)), i);
    EXPECT_EQ(store.integer("b" + std::to_string(i)), i);
  }
}

TEST_F(DefaultsStoreTest, seesWhatAnotherProcessStored) {
  DefaultsStore mine{path};
  DefaultsStore other{path};
  ASSERT_TRUE(other.set("k", 5));
  EXPECT_FALSE(mine.has("k"));
  mine.refresh();
  EXPECT_EQ(mine.integer("k"), 5);

  const auto revision = mine.revision();
  ASSERT_TRUE(mine.set("k", 6));
  mine.refresh();
  EXPECT_EQ(mine.revision(), revision) << "its own change is no news";
  ASSERT_TRUE(other.set("l", 7));
  ASSERT_TRUE(mine.set("k", 8));
  EXPECT_EQ(mine.integer("l"), 7);
  EXPECT_GT(mine.revision(), revision) << "news that came on the way of a change";

  fs::remove(path);
  mine.refresh();
  EXPECT_FALSE(mine.has("k"));
}

TEST_F(DefaultsStoreTest, readsTheFormerProductsFileAndNeverTouchesIt) {
  ASSERT_EQ(setenv("XDG_CONFIG_HOME", folder.path().c_str(), 1), 0);
  EXPECT_FALSE(DefaultsStore::formerProduct());
  EXPECT_EQ(DefaultsStore::standard().path(), folder / "spacemint/app.spacemint.Spacemint.json");

  fs::create_directory(folder / "spacemint");
  const std::string former = folder / "spacemint/app.loftmere.Loftmere.json";
  std::ofstream{former} << "{";
  auto store = DefaultsStore::formerProduct();
  unsetenv("XDG_CONFIG_HOME");
  ASSERT_TRUE(store);
  ASSERT_TRUE(store->readError());
  EXPECT_EQ(store->readError()->domain, DefaultsStore::damaged);
  EXPECT_FALSE(store->set("k", 1));
  EXPECT_EQ(support::readText(former), "{");
}

using support::namesIn;

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
  const std::tuple<const char*, minutes, bool> cases[]{
      {".1-1.spacemint-tmp", minutes{61}, false}, {".1-2.spacemint-tmp", minutes{59}, true},
      {"1-3.spacemint-tmp", minutes{61}, true},   {".1-4.spacemint-tmp.json", minutes{61}, true},
      {".1-5.json", minutes{61}, true},
  };
  for (const auto& [name, age, stays] : cases) {
    std::ofstream{folder / name} << "x";
    fs::last_write_time(folder / name, fs::file_time_type::clock::now() - age);
  }
  fs::create_directory(folder / ".folder.spacemint-tmp");
  fs::last_write_time(folder / ".folder.spacemint-tmp", fs::file_time_type::clock::now() - minutes{61});
  ASSERT_TRUE(writeFileAtomically(path, "x"));
  for (const auto& [name, age, stays] : cases) EXPECT_EQ(fs::exists(folder / name), stays) << name;
  EXPECT_TRUE(fs::exists(folder / ".folder.spacemint-tmp"));
}

}  // namespace
}  // namespace spacemint
