#include "core/host/linux/journal/JournalServer.h"

#include "core/host/linux/journal/JournalEndpoint.h"
#include "core/host/linux/journal/JournalMessage.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace spacemint {

namespace {

bool wouldBlock(int error) {
  return error == EAGAIN || error == EINTR;
}

}  // namespace

std::expected<std::unique_ptr<JournalServer>, Error> JournalServer::start(Parts parts) {
  FileHandle wake{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
  if (!wake) return std::unexpected(systemError("recorder", errno));
  std::unique_ptr<JournalServer> server{new JournalServer(std::move(parts), std::move(wake))};
  server->thread_ = std::thread([&running = *server] { running.run(); });
  return server;
}

JournalServer::~JournalServer() {
  stopping_ = true;
  eventfd_write(wake_.get(), 1);
  thread_.join();
}

void JournalServer::run() {
  while (!stopping_) {
    const bool hasRoom = connections_.size() < connectionLimit;
    std::vector<pollfd> ready{{wake_.get(), POLLIN, 0}, {hasRoom ? parts_.listener.get() : -1, POLLIN, 0}};
    for (const Connection& connection : connections_) {
      const auto wanted = static_cast<short>(connection.answer.empty() ? POLLIN : POLLOUT);
      ready.push_back({connection.handle.get(), wanted, 0});
    }
    poll(ready.data(), ready.size(), untilDeadline());
    const auto now = Clock::now();
    std::size_t at = 1;
    std::erase_if(connections_, [&](Connection& connection) {
      return ready[++at].revents != 0 ? !serve(connection) : connection.deadline <= now;
    });
    if (ready[1].revents != 0) accept();
  }
}

// Milliseconds until the first client has used up its time; -1 when there is no client.
int JournalServer::untilDeadline() const {
  if (connections_.empty()) return -1;
  const auto first = std::ranges::min_element(connections_, {}, &Connection::deadline)->deadline;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(first - Clock::now());
  return static_cast<int>(std::max(left.count(), std::chrono::milliseconds::rep{0}));
}

void JournalServer::accept() {
  FileHandle handle{accept4(parts_.listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK)};
  if (!handle || !isOwnPeer(handle)) return;
  connections_.push_back({.handle = std::move(handle),
                          .deadline = Clock::now() + parts_.readingTime,
                          .request = {},
                          .answer = {}});
}

// False when the connection can be closed.
bool JournalServer::serve(Connection& connection) {
  return connection.answer.empty() ? receive(connection) : send(connection);
}

bool JournalServer::receive(Connection& connection) {
  std::array<char, 4'096> piece;
  const ssize_t length = recv(connection.handle.get(), piece.data(), piece.size(), 0);
  if (length < 0) return wouldBlock(errno);
  connection.request.append(piece.data(), static_cast<std::size_t>(length));
  if (connection.request.size() > JournalMessage::requestLimit) return false;
  if (length > 0) return true;
  // The client has shut down its sending side: the request is complete.
  connection.answer = answerTo(connection.request);
  connection.deadline = Clock::now() + parts_.writingTime;
  return !connection.answer.empty() && send(connection);
}

bool JournalServer::send(Connection& connection) const {
  const std::string_view rest = std::string_view{connection.answer}.substr(connection.sent);
  const ssize_t length = ::send(connection.handle.get(), rest.data(), rest.size(), MSG_NOSIGNAL);
  if (length < 0) return wouldBlock(errno);
  connection.sent += static_cast<std::size_t>(length);
  return connection.sent < connection.answer.size();
}

// Empty when the bytes are not a valid request.
std::string JournalServer::answerTo(const std::string& request) {
  const auto decoded = JournalMessage::decodeRequest(request);
  if (!decoded) return {};
  if (decoded->kind == JournalMessage::Kind::id) {
    return JournalMessage::encodeId(parts_.journal.currentEventID(decoded->query));
  }
  if (decoded->kind == JournalMessage::Kind::totals) {
    return JournalMessage::encodeMeasured(parts_.journal.measuredChanges(decoded->query));
  }
  return JournalMessage::encodeAnswer(parts_.journal.changes(decoded->query));
}

}  // namespace spacemint
