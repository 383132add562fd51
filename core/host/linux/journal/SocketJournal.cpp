#include "core/host/linux/journal/SocketJournal.h"

#include "core/host/linux/journal/JournalEndpoint.h"
#include "core/host/linux/journal/JournalMessage.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace spacemint {

namespace {

using Clock = std::chrono::steady_clock;

// A recorder that cannot give an id in this time is too busy or hangs.
constexpr std::chrono::milliseconds idTimeout{5'000};
// A larger answer is not read to its end. Real answers are much smaller.
constexpr std::size_t answerLimit = std::size_t{1} << 30U;
// How often a wait looks whether the query was cancelled. A signal to this thread ends the pause at once.
constexpr std::chrono::milliseconds answerCheckInterval{50};

// A wait for one connection.
class Wait {
 public:
  Wait(const FileHandle& connection, const JournalQuery& query, std::chrono::milliseconds timeout)
      : connection_(connection),
        query_(query),
        deadline_(Clock::now() + timeout) {}

  // Whether the deadline has passed or the query was cancelled.
  bool isOver() const { return Clock::now() >= deadline_ || (query_.shouldCancel && query_.shouldCancel()); }

  // Waits until the connection is ready for `events` (POLL…). False when the wait is over before that.
  bool until(short events) const {
    while (!isOver()) {
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline_ - Clock::now());
      pollfd ready{connection_.get(), events, 0};
      const int count = poll(&ready, 1, static_cast<int>(std::min(left, answerCheckInterval).count()));
      if (count > 0) return true;
      if (count < 0 && errno != EINTR) return false;
    }
    return false;
  }

 private:
  const FileHandle& connection_;
  const JournalQuery& query_;
  Clock::time_point deadline_;
};

bool sendAll(const FileHandle& connection, std::string_view bytes, const Wait& wait) {
  while (!bytes.empty()) {
    if (!wait.until(POLLOUT)) return false;
    const ssize_t length = send(connection.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (length < 0 && errno != EAGAIN && errno != EINTR) return false;
    if (length > 0) bytes.remove_prefix(static_cast<std::size_t>(length));
  }
  return shutdown(connection.get(), SHUT_WR) == 0;
}

std::expected<std::string, JournalError> receiveAll(const FileHandle& connection, const Wait& wait) {
  std::string bytes;
  std::array<char, 65'536> piece;
  while (bytes.size() < answerLimit) {
    if (!wait.until(POLLIN)) return std::unexpected(JournalError::timedOut);
    const ssize_t length = recv(connection.get(), piece.data(), piece.size(), 0);
    if (length == 0) return bytes;
    if (length > 0) bytes.append(piece.data(), static_cast<std::size_t>(length));
    if (length < 0 && errno != EAGAIN && errno != EINTR) break;
  }
  return std::unexpected(JournalError::failed);
}

// The bytes of the answer. They are empty when the recorder ends meanwhile.
std::expected<std::string, JournalError> ask(const std::string& endpointFolder,
                                             const JournalMessage::Request& request,
                                             std::chrono::milliseconds timeout) {
  const auto endpoint = JournalEndpoint::forRoot(request.query.root, endpointFolder);
  if (!endpoint) return std::unexpected(JournalError::notRecording);
  const auto connection = endpoint->connect();
  if (!connection) {
    const bool isNoRecorder =
        connection.error().isSystem(ENOENT) || connection.error().isSystem(ECONNREFUSED);
    return std::unexpected(isNoRecorder ? JournalError::notRecording : JournalError::failed);
  }
  const Wait wait{*connection, request.query, timeout};
  if (!sendAll(*connection, JournalMessage::encode(request), wait)) {
    return std::unexpected(wait.isOver() ? JournalError::timedOut : JournalError::failed);
  }
  return receiveAll(*connection, wait);
}

}  // namespace

std::uint64_t SocketJournal::currentEventID(const JournalQuery& query) {
  const auto answer = ask(endpointFolder_, {.kind = JournalMessage::Kind::id, .query = query},
                          std::min(query.timeout, idTimeout));
  if (!answer) return 0;
  return JournalMessage::decodeId(*answer).value_or(0);
}

std::expected<FolderChanges, JournalError> SocketJournal::changes(const JournalQuery& query) {
  const auto bytes =
      ask(endpointFolder_, {.kind = JournalMessage::Kind::changes, .query = query}, query.timeout);
  if (!bytes) return std::unexpected(bytes.error());
  auto answer = JournalMessage::decodeAnswer(*bytes);
  if (!answer) return std::unexpected(JournalError::failed);
  return std::move(*answer);
}

// An older recorder does not know the request and closes the connection.
std::expected<MeasuredChanges, JournalError> SocketJournal::measuredChanges(const JournalQuery& query) {
  const auto bytes =
      ask(endpointFolder_, {.kind = JournalMessage::Kind::totals, .query = query}, query.timeout);
  if (!bytes) return std::unexpected(bytes.error());
  auto answer = JournalMessage::decodeMeasured(*bytes);
  if (!answer) return std::unexpected(JournalError::failed);
  return std::move(*answer);
}

std::unique_ptr<EventJournal> hostEventJournal() {
  return std::make_unique<SocketJournal>();
}

}  // namespace spacemint
