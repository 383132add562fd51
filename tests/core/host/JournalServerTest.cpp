// What a recorder answers through its socket, and how it treats clients that break the rules.

#include "core/host/linux/journal/JournalServer.h"

#include "core/host/EventRecorder.h"
#include "core/host/linux/journal/JournalEndpoint.h"
#include "core/host/linux/journal/JournalMessage.h"
#include "core/host/linux/journal/SocketJournal.h"
#include "support/ChildProcess.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <poll.h>
#include <sys/socket.h>

#include <fstream>
#include <set>

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
  FolderChanges answer{.directories = {"/r/new\nline", "/r/\xff"}, .trees = {"/r"}};
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
  using namespace std::string_literals;
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

}  // namespace
}  // namespace spacemint
