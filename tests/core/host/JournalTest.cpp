// What a recorder answers through its socket, and how it treats clients that break the rules.

#include "core/host/EventRecorder.h"
#include "core/host/linux/FolderOpening.h"
#include "core/host/linux/journal/EventClock.h"
#include "core/host/linux/journal/FileSystemTraits.h"
#include "core/host/linux/journal/FolderHandles.h"
#include "core/host/linux/journal/JournalEndpoint.h"
#include "core/host/linux/journal/JournalMessage.h"
#include "core/host/linux/journal/JournalServer.h"
#include "core/host/linux/journal/SessionCounter.h"
#include "core/host/linux/journal/SocketJournal.h"
#include "core/scan/DiskScanner.h"
#include "core/scan/ProcessJournal.h"
#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <thread>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::TemporaryFolder;
using namespace std::chrono_literals;

class FakeJournal final : public EventJournal {
 public:
  std::uint64_t currentEventID(const JournalQuery& query) override { return query.root == "/r" ? 42 : 0; }
  std::expected<FolderChanges, JournalError> changes(const JournalQuery& query) override {
    if (query.since == 1) return std::unexpected(JournalError::olderThanSession);
    return answer;
  }
  std::expected<MeasuredChanges, JournalError> measuredChanges(const JournalQuery& query) override {
    measuredFor = query;
    if (query.since == 1) return std::unexpected(JournalError::tooManyChanges);
    return measured;
  }
  FolderChanges answer{.directories = {"/r/new\nline", "/r/\xff"}, .trees = {"/r"}};
  MeasuredChanges measured{
      .folders = {{.kind = MeasuredChanges::Kind::below, .size = Bytes{1} << 62U, .fileCount = 3, .name = ""},
                  {.kind = MeasuredChanges::Kind::listed, .isWorktree = true, .name = "new\nline"},
                  {.parent = 1, .kind = MeasuredChanges::Kind::unknown, .name = "\xff"},
                  {.parent = 1, .kind = MeasuredChanges::Kind::same, .size = 9, .name = "s"}},
      .files = {{.folder = 1, .name = "f", .size = 7, .modified = -5}}};
  JournalQuery measuredFor;
};

class JournalServerTest : public testing::Test {
 protected:
  void serve(std::chrono::milliseconds patience = 10s) {
    ASSERT_TRUE(lock);
    server = JournalServer::start({.journal = journal,
                                   .listener = endpoint.listen().value(),
                                   .readingTime = patience,
                                   .writingTime = patience})
                 .value();
  }
  FileHandle connect() const { return endpoint.connect().value(); }

  static void send(const FileHandle& peer, const std::string& bytes) {
    EXPECT_EQ(::send(peer.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL), std::ssize(bytes));
  }
  // All that comes until the other side ends the connection.
  static std::string received(const FileHandle& peer) {
    std::string all;
    char piece[4'096];
    for (;;) {
      pollfd ready{peer.get(), POLLIN, 0};
      poll(&ready, 1, -1);
      const ssize_t length = recv(peer.get(), piece, sizeof piece, 0);
      if (length <= 0) return all;
      all.append(piece, static_cast<std::size_t>(length));
    }
  }

  TemporaryFolder folder;
  FakeJournal journal;
  JournalEndpoint endpoint = JournalEndpoint::forRoot("/r", folder / "endpoint").value();
  std::expected<FileLock, Error> lock = endpoint.lock();
  std::unique_ptr<JournalServer> server;
  SocketJournal asker{folder / "endpoint"};
};

TEST_F(JournalServerTest, passesOnWhatTheJournalSays) {
  EXPECT_EQ(asker.changes({.root = "/r", .since = 9, .timeout = 5s}).error(), JournalError::notRecording);
  serve();
  EXPECT_EQ(asker.currentEventID({.root = "/r"}), 42U);
  EXPECT_EQ(asker.currentEventID({.root = "/other"}), 0U);
  const auto changes = asker.changes({.root = "/r", .since = 9, .timeout = 5s});
  ASSERT_TRUE(changes);
  EXPECT_EQ(*changes, journal.answer);
  EXPECT_EQ(asker.changes({.root = "/r", .since = 1, .timeout = 5s}).error(), JournalError::olderThanSession);
  EXPECT_EQ(
      asker.measuredChanges({.root = "/r", .since = 9, .timeout = 5s, .minNodeSize = 4, .folderLimit = 8}),
      journal.measured);
  EXPECT_EQ(journal.measuredFor.since, 9U);
  EXPECT_EQ(journal.measuredFor.minNodeSize, 4);
  EXPECT_EQ(journal.measuredFor.folderLimit, 8U);
  EXPECT_EQ(asker.measuredChanges({.root = "/r", .since = 1}).error(), JournalError::tooManyChanges);
}

TEST_F(JournalServerTest, dropsPeersThatSendRubbishOrTooMuch) {
  serve();
  for (const std::string& rubbish :
       {std::string{"GET / HTTP/1.0\r\n\r\n"}, std::string(100, '\0'), std::string{"spacemint-journal 1"},
        JournalMessage::encode({.query = {.root = "/r"}}) + "more",
        std::string{"spacemint-journal 2\0id\0/r\0end\0", 29}}) {
    const FileHandle peer = connect();
    send(peer, rubbish);
    shutdown(peer.get(), SHUT_WR);
    EXPECT_EQ(received(peer), "");
  }
  const FileHandle talker = connect();
  send(talker, std::string(JournalMessage::requestLimit + 1, 'x'));  // and more to come
  EXPECT_EQ(received(talker), "");
  EXPECT_EQ(asker.currentEventID({.root = "/r"}), 42U);
}

TEST_F(JournalServerTest, answersOthersWhileAPeerSaysNothing) {
  serve(100ms);
  const FileHandle silent = connect();
  EXPECT_EQ(asker.currentEventID({.root = "/r"}), 42U);
  EXPECT_EQ(received(silent), "");
}

TEST_F(JournalServerTest, answersOthersWhileAPeerDoesNotRead) {
  journal.answer.directories.assign(30'000, "/r/" + std::string(200, 'd'));
  serve(2s);  // long enough for one who reads, also where everything is slow
  const FileHandle lazy = connect();
  const std::string request =
      JournalMessage::encode({.kind = JournalMessage::Kind::changes, .query = {.root = "/r", .since = 9}});
  send(lazy, request);
  shutdown(lazy.get(), SHUT_WR);
  EXPECT_EQ(asker.currentEventID({.root = "/r"}), 42U);
  pollfd ended{lazy.get(), POLLRDHUP, 0};
  EXPECT_EQ(poll(&ended, 1, 10'000), 1);
  const std::string cut = received(lazy);
  EXPECT_FALSE(cut.empty());
  EXPECT_FALSE(JournalMessage::decodeAnswer(cut));  // half an answer is none
  const auto whole = asker.changes({.root = "/r", .since = 9, .timeout = 5s});
  ASSERT_TRUE(whole);
  EXPECT_EQ(whole->directories.size(), 30'000U);
}

TEST_F(JournalServerTest, isNotForOtherUsers) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become somebody else";
  serve();
  fs::permissions(folder.path(), fs::perms::all);
  EXPECT_TRUE(support::succeedsInChild(
      [&] { return support::becomeNobody() && !endpoint.connect() && !endpoint.lock(); }));
  fs::permissions(folder / "endpoint", fs::perms::all);
  for (const auto& entry : fs::directory_iterator(folder / "endpoint"))
    fs::permissions(entry, fs::perms::all);
  // Neither lets the other in, also where the folder is open.
  EXPECT_TRUE(support::succeedsInChild([&] { return support::becomeNobody() && !endpoint.connect(); }));
  EXPECT_FALSE(endpoint.lock());
}

// The recorder takes the connection and hangs.
TEST_F(JournalServerTest, endsAWaitAtTheTimeoutAndWhenItIsCancelled) {
  const FileHandle hanging = endpoint.listen().value();
  EXPECT_EQ(asker.changes({.root = "/r", .since = 9, .timeout = 50ms}).error(), JournalError::timedOut);
  int polls = 0;
  const JournalQuery query{
      .root = "/r", .since = 9, .timeout = 24h, .shouldCancel = [&] { return ++polls == 3; }};
  EXPECT_EQ(asker.changes(query).error(), JournalError::timedOut);
  EXPECT_EQ(polls, 3);
  polls = 0;
  EXPECT_EQ(asker.currentEventID(query), 0U);
  EXPECT_EQ(polls, 3);
}

TEST(JournalMessage, isTakenWholeOrNotAtAll) {
  const JournalMessage::Answer answer = FolderChanges{.directories = {"/r/a"}, .trees = {"/r/b", "/r/c"}};
  const std::string bytes = JournalMessage::encodeAnswer(answer);
  ASSERT_TRUE(JournalMessage::decodeAnswer(bytes));
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    EXPECT_FALSE(JournalMessage::decodeAnswer(bytes.substr(0, length))) << length;
  }
  const std::string measured = JournalMessage::encodeMeasured(FakeJournal{}.measured);
  for (std::size_t length = 0; length < measured.size(); ++length) {
    EXPECT_FALSE(JournalMessage::decodeMeasured(measured.substr(0, length))) << length;
  }
  // Each breaks one field: the parent of a folder, its kind, its size, and the folder of a file.
  using namespace std::string_literals;
  for (const auto& [part, broken] : {std::pair{"1\0unknown"s, "2\0unknown"s},
                                     {"same"s, "sane"s},
                                     {"0\0009\000"s, "0\000-9\000"s},
                                     {"1\0007\000"s, "4\0007\000"s}}) {
    std::string changed = measured;
    ASSERT_NE(changed.find(part), std::string::npos);
    changed.replace(changed.find(part), part.size(), broken);
    EXPECT_FALSE(JournalMessage::decodeMeasured(changed)) << broken;
  }
  EXPECT_FALSE(
      JournalMessage::decodeAnswer("spacemint-journal 1\0changes\0"
                                   "9999999999\0"
                                   "0\0end\0"s));
  EXPECT_EQ(JournalMessage::decodeAnswer("spacemint-journal 1\0absent\0later-reason\0end\0"s)->error(),
            JournalError::failed);
  for (const std::uint64_t id : {std::uint64_t{0}, ~std::uint64_t{0}}) {
    EXPECT_EQ(JournalMessage::decodeId(JournalMessage::encodeId(id)), id);
  }
}

class RecorderEndpointTest : public testing::Test {
 protected:
  auto start() {
    return EventRecorder::start(
        {.root = root.path(), .endpointFolder = folder / "endpoint", .stateFolder = folder / "state"});
  }

  TemporaryFolder folder;
  TemporaryFolder root{support::recordableFolder()};
  SocketJournal asker{folder / "endpoint"};
};

TEST_F(RecorderEndpointTest, isTheOnlyOneOfItsRootAndOutlivedByNothing) {
  auto first = start();
  ASSERT_TRUE(first) << first.error().message;
  EXPECT_TRUE(start().error().isSystem(EBUSY));
  ASSERT_TRUE((*first)->waitUntilRecording(1min));
  const std::uint64_t id = asker.currentEventID({.root = root.path()});
  EXPECT_GT(id, 0U);
  first->reset();
  EXPECT_EQ(asker.currentEventID({.root = root.path()}), 0U);
  const auto second = start();
  ASSERT_TRUE(second);
  ASSERT_TRUE((*second)->waitUntilRecording(1min));
  EXPECT_EQ(asker.changes({.root = root.path(), .since = id, .timeout = 5s}).error(),
            JournalError::olderThanSession);
  EXPECT_GT(asker.currentEventID({.root = root.path()}), id);
}

TEST_F(RecorderEndpointTest, answersTwoAskersAtOnce) {
  const auto recorder = start();
  ASSERT_TRUE(recorder && (*recorder)->waitUntilRecording(1min));
  const std::uint64_t since = asker.currentEventID({.root = root.path()});
  std::ofstream(root / "new") << "x";
  std::array<std::set<std::uint64_t>, 2> ids;
  std::array<int, 2> right{};
  const auto ask = [&](std::size_t who) {
    for (int i = 0; i < 50; ++i) {
      ids[who].insert(asker.currentEventID({.root = root.path()}));
      const auto changes = asker.changes({.root = root.path(), .since = since, .timeout = 30s});
      if (changes && changes->directories == std::vector{root.path()}) ++right[who];
    }
  };
  std::thread other(ask, 1);
  ask(0);
  other.join();
  EXPECT_EQ(right, (std::array{50, 50}));
  ids[0].merge(ids[1]);
  EXPECT_EQ(ids[0].size(), 100U);
  EXPECT_FALSE(ids[0].contains(0));
}

using testing::UnorderedElementsAre;

class ProcessJournalTest : public testing::Test {
 protected:
  ProcessJournalTest() {
    for (const char* name : {"endpoint", "state", "a/inner", "b"}) fs::create_directories(folder / name);
    fs::permissions(folder / "endpoint", fs::perms::owner_all);
  }
  EventRecorder::Options options() const {
    return {.endpointFolder = folder / "endpoint", .stateFolder = folder / "state"};
  }
  // A full scan; the id that it would carry.
  static std::uint64_t scan(EventJournal& journal, const std::string& root) {
    const auto crawl = journal.beginCrawl(root);
    EXPECT_TRUE(crawl) << root;
    if (!crawl) return 0;
    EXPECT_TRUE(DiskScanner::scan({.root = root, .listing = crawl.get()}));
    crawl->finish();
    return crawl->eventID();
  }

  support::TemporaryFolder folder{support::recordableFolder()};
};

TEST_F(ProcessJournalTest, recordsFromTheFirstScanOn) {
  ProcessJournal journal{options()};
  const std::string root = folder / "a";
  EXPECT_EQ(journal.currentEventID({.root = root}), 0U);
  const std::uint64_t first = scan(journal, root);
  EXPECT_FALSE(journal.beginCrawl(root)) << "it is recorded by now";
  std::ofstream{root + "/inner/new"} << "x";
  const auto changes = journal.changes({.root = root, .since = first});
  ASSERT_TRUE(changes) << textOf(changes.error());
  EXPECT_THAT(changes->directories, UnorderedElementsAre(root + "/inner"));
}

int threadsOfLowPriority() {
  const fs::directory_iterator threads{"/proc/self/task"};
  return static_cast<int>(std::ranges::count_if(threads, [](const fs::directory_entry& thread) {
    return getpriority(PRIO_PROCESS, static_cast<id_t>(std::stoi(thread.path().filename()))) == 19;
  }));
}

TEST_F(ProcessJournalTest, recordsAtThePriorityOfItsMakerAndNotOfTheScan) {
  ProcessJournal journal{options()};
  std::thread{[&] {
    ASSERT_EQ(setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), 19), 0);
    ASSERT_EQ(threadsOfLowPriority(), 1);
    scan(journal, folder / "a");
    EXPECT_EQ(threadsOfLowPriority(), 1);
  }}.join();
}

TEST_F(ProcessJournalTest, recordsOneFolderAtATime) {
  ProcessJournal journal{options()};
  const std::string other = folder / "b";
  const std::uint64_t first = scan(journal, folder / "a");
  EXPECT_FALSE(journal.beginCrawl(folder / "a"));
  const auto crawl = journal.beginCrawl(other);
  ASSERT_TRUE(crawl);
  EXPECT_FALSE(journal.changes({.root = folder / "a", .since = first}));
  // A crawl can be completed after its recorder was replaced.
  EXPECT_TRUE(journal.beginCrawl(folder / "a"));
  EXPECT_TRUE(DiskScanner::scan({.root = other, .listing = crawl.get()}));
  crawl->finish();
}

TEST_F(ProcessJournalTest, leavesTheRecordingToAnotherThatDoesIt) {
  ProcessJournal first{options()};
  ProcessJournal second{options()};
  scan(first, folder / "a");
  EXPECT_FALSE(second.beginCrawl(folder / "a"));
}

class SessionCounterTest : public testing::Test {
 protected:
  std::uint64_t begin() {
    const auto first = SessionCounter::begin(folder / "state", [this] { return drawn++; });
    EXPECT_TRUE(first) << first.error().message;
    return first.value_or(0);
  }
  void write(const std::string& text) const { support::writeText(file, text); }
  std::string contents() const { return support::readText(file); }

  TemporaryFolder folder;
  std::string file = folder / "state/journal-session";
  std::uint64_t drawn = 1;
};

TEST_F(SessionCounterTest, countsOnAndOnAndNoSessionGivesAnIdOfAnother) {
  std::uint64_t last = 0;
  for (int session = 1; session <= 5; ++session) {
    EventClock clock{begin()};
    EXPECT_GT(clock.stamp(), last);
    for (int i = 0; i < 10; ++i) {
      const std::uint64_t id = clock.give();
      EXPECT_GT(id, last);
      last = id;
    }
    EXPECT_EQ(contents(), "spacemint journal session 1\n" + std::to_string(session) + "\n");
  }
}

TEST_F(SessionCounterTest, startsAgainWhereTheFileIsMissingOrDamaged) {
  const std::set<std::string> damaged{"",
                                      "rubbish",
                                      "spacemint journal session 1\n",
                                      "spacemint journal session 1\n-4\n",
                                      "spacemint journal session 1\n7",
                                      "spacemint journal session 1\n7 \n",
                                      "spacemint journal session 1\n99999999999999999999\n",
                                      "spacemint journal session 2\n7\n",
                                      std::string(10'000, '7')};
  std::set<std::uint64_t> seen{begin()};
  for (const std::string& text : damaged) {
    write(text);
    EXPECT_TRUE(seen.insert(begin()).second) << text;
    EXPECT_EQ(contents(), "spacemint journal session 1\n1\n") << text;
    EXPECT_TRUE(fs::exists(file + ".damaged"));
  }
  fs::remove(file);
  EXPECT_TRUE(seen.insert(begin()).second);
}

TEST_F(SessionCounterTest, tellsASessionFromTheOneThatABackupMakesItCountAgain) {
  begin();
  const std::string backup = contents();
  const std::uint64_t before = begin();
  write(backup);
  const std::uint64_t after = begin();
  constexpr unsigned low = SessionCounter::randomBits + EventClock::bits;
  EXPECT_EQ(after >> low, before >> low);
  EXPECT_NE(after >> EventClock::bits, before >> EventClock::bits);
}

TEST_F(SessionCounterTest, failsRatherThanCountWithoutKeepingIt) {
  begin();
  fs::permissions(folder / "state", fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                                        fs::perms::others_exec);
  fs::permissions(folder.path(), fs::perms::all);
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::becomeNobody()) return false;
    return !SessionCounter::begin(folder / "state", SessionCounter::drawRandomly);
  }));
  fs::permissions(folder / "state", fs::perms::owner_all);
  write("spacemint journal session 1\n1048575\n");
  EXPECT_FALSE(SessionCounter::begin(folder / "state", SessionCounter::drawRandomly));  // none left
  EXPECT_EQ(contents(), "spacemint journal session 1\n1048575\n");
  fs::remove(file);
  fs::create_directory(file);
  EXPECT_FALSE(SessionCounter::begin(folder / "state", SessionCounter::drawRandomly));
}

TEST(EventClock, givesNoIdTwiceAndNoneOfTheNextSession) {
  EventClock clock{EventClock::count * 3};
  std::uint64_t given = 0;
  while (const std::uint64_t id = clock.give()) {
    EXPECT_EQ(id, EventClock::count * 3 + given);
    ++given;
  }
  EXPECT_EQ(given, EventClock::count - 1);
  EXPECT_EQ(clock.stamp(), EventClock::count * 4 - 1);
}

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
