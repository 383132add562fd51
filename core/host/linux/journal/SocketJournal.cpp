#include "core/host/linux/journal/SocketJournal.h"

#include "core/host/linux/journal/JournalMessage.h"
#include "core/host/linux/journal/MeetingPlace.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace spacemint {

namespace {

using Clock = std::chrono::steady_clock;

// A recorder that does not say what time it is by then has no time for us.
constexpr std::chrono::seconds idTimeout{5};
// Far above what a recorder answers.
constexpr std::size_t answerLimit = std::size_t{1} << 30U;

// False when the deadline passes first.
bool waitFor(const FileHandle& connection, short what, Clock::time_point deadline) {
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) return false;
    pollfd ready{connection.get(), what, 0};
    const int count = poll(&ready, 1, static_cast<int>(std::min<long>(left, 3'600'000)));
    if (count > 0) return true;
    if (count < 0 && errno != EINTR) return false;
  }
}

bool sendAll(const FileHandle& connection, std::string_view bytes, Clock::time_point deadline) {
  while (!bytes.empty()) {
    if (!waitFor(connection, POLLOUT, deadline)) return false;
    const ssize_t length = send(connection.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (length < 0 && errno != EAGAIN && errno != EINTR) return false;
    if (length > 0) bytes.remove_prefix(static_cast<std::size_t>(length));
  }
  return shutdown(connection.get(), SHUT_WR) == 0;
}

std::expected<std::string, JournalAbsence> receiveAll(const FileHandle& connection,
                                                      Clock::time_point deadline) {
  std::string bytes;
  std::array<char, 65'536> piece;
  while (bytes.size() < answerLimit) {
    if (!waitFor(connection, POLLIN, deadline)) return std::unexpected(JournalAbsence::timedOut);
    const ssize_t length = recv(connection.get(), piece.data(), piece.size(), 0);
    if (length == 0) return bytes;
    if (length > 0) bytes.append(piece.data(), static_cast<std::size_t>(length));
    if (length < 0 && errno != EAGAIN && errno != EINTR) break;
  }
  return std::unexpected(JournalAbsence::failed);
}

std::expected<std::string, JournalAbsence> ask(const std::string& meetingFolder, const std::string& root,
                                               const JournalMessage::Request& request,
                                               std::chrono::milliseconds timeout) {
  const auto deadline = Clock::now() + timeout;
  const auto place = MeetingPlace::forRoot(root, meetingFolder);
  if (!place) return std::unexpected(JournalAbsence::notRecording);
  const auto connection = place->connect();
  if (!connection) {
    const bool isNobodyThere =
        connection.error().isSystem(ENOENT) || connection.error().isSystem(ECONNREFUSED);
    return std::unexpected(isNobodyThere ? JournalAbsence::notRecording : JournalAbsence::failed);
  }
  // A recorder that ends meanwhile closes the connection, which then says nothing.
  if (!sendAll(*connection, JournalMessage::encode(request), deadline)) {
    return std::unexpected(Clock::now() < deadline ? JournalAbsence::failed : JournalAbsence::timedOut);
  }
  return receiveAll(*connection, deadline);
}

}  // namespace

std::uint64_t SocketJournal::currentEventID(const std::string& root) {
  const auto answer = ask(meetingFolder_, root, JournalMessage::IdRequest{root}, idTimeout);
  if (!answer) return 0;
  return JournalMessage::decodeId(*answer).value_or(0);
}

std::expected<FolderChanges, JournalAbsence> SocketJournal::changes(const Question& question) {
  const auto bytes = ask(meetingFolder_, question.root, question, question.timeout);
  if (!bytes) return std::unexpected(bytes.error());
  auto answer = JournalMessage::decodeAnswer(*bytes);
  if (!answer) return std::unexpected(JournalAbsence::failed);
  return std::move(*answer);
}

std::unique_ptr<EventJournal> hostEventJournal() {
  return std::make_unique<SocketJournal>();
}

}  // namespace spacemint
